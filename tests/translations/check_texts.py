#!/usr/bin/env python3
"""Holds the translated texts to those of the sources: none is missing, unfinished or left over, and
each has the places, the letter for Alt and the ending of its English text.
usage: check_texts.py SOURCE_FOLDER LUPDATE"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

root, lupdate = pathlib.Path(sys.argv[1]), sys.argv[2]
faults = []


def marks(text):
    """What a text must have in every language."""
    return {
        "places": sorted(re.findall(r"%(?:n|[1-9])", text)),
        "letter for Alt": len(re.findall(r"&\w", re.sub(r"&[a-z]+;", "", text))),
        "ending": re.search(r"(\.\.\.|[.:])?$", text).group(),
        "tags": sorted(re.findall(r"</?\w+>", text)),
        "patterns": re.findall(r"\*\.?\w*", text),
        "space at its start": text[:1].isspace(),
    }


with tempfile.TemporaryDirectory() as folder:
    for file in sorted(root.glob("translations/*.ts")):
        copy = pathlib.Path(folder) / file.name
        shutil.copy(file, copy)
        renewed = subprocess.run([root / "translations/renew.sh", lupdate, copy],
                                 capture_output=True, text=True)
        if renewed.returncode or renewed.stderr:  # a text whose class it does not know
            faults.append(f"{file.name}: lupdate says: {renewed.stderr}")
        if copy.read_bytes() != file.read_bytes():
            faults.append(f"{file.name} is not what the sources say: build the target \"texts\"")
        messages = list(ElementTree.parse(copy).iter("message"))
        if len(messages) < 200:
            faults.append(f"{file.name}: only {len(messages)} texts were found")
        for message in messages:
            source = message.find("source").text
            translation = message.find("translation")
            if translation.get("type"):
                faults.append(f"{file.name}: {translation.get('type')}: {source!r}")
                continue
            for text in [form.text for form in translation] or [translation.text]:
                wanted, found = marks(source), marks(text or "")
                faults += [f"{file.name}: {text!r} has another {what} than {source!r}"
                           for what in wanted if wanted[what] != found[what]]

print(*faults, sep="\n")
sys.exit(bool(faults))
