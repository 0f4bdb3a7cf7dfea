<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en_US">
<context>
    <name>halvenor::ActionMenus</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>&amp;Sound</source>
        <translation>&amp;Ton</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>%1 or %2</source>
        <translation>%1 oder %2</translation>
    </message>
</context>
<context>
    <name>halvenor::Audio</name>
    <message>
        <source>GStreamer is not complete: %1</source>
        <translation>GStreamer ist nicht vollständig: %1</translation>
    </message>
    <message>
        <source>no such file</source>
        <translation>Datei nicht vorhanden</translation>
    </message>
    <message>
        <source>is a folder</source>
        <translation>ist ein Ordner</translation>
    </message>
    <message>
        <source>cannot be read: permission denied</source>
        <translation>kann nicht gelesen werden: keine Berechtigung</translation>
    </message>
    <message>
        <source>is empty</source>
        <translation>ist leer</translation>
    </message>
    <message>
        <source>has a name that GStreamer cannot open</source>
        <translation>hat einen Namen, den GStreamer nicht öffnen kann</translation>
    </message>
    <message>
        <source>GStreamer cannot be started: %1</source>
        <translation>GStreamer kann nicht gestartet werden: %1</translation>
    </message>
    <message>
        <source>cannot be found</source>
        <translation>kann nicht gefunden werden</translation>
    </message>
    <message>
        <source>does not support seeking</source>
        <translation>lässt kein Springen zu</translation>
    </message>
    <message>
        <source>cannot be read to its end</source>
        <translation>kann nicht bis zum Ende gelesen werden</translation>
    </message>
    <message>
        <source>contains no sound</source>
        <translation>enthält keinen Ton</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>isn&apos;t a supported audio file</source>
        <translation>ist keine unterstützte Audiodatei</translation>
    </message>
    <message>
        <source>needs a decoder that is not installed</source>
        <translation>benötigt einen Decoder, der nicht installiert ist</translation>
    </message>
    <message>
        <source>is damaged</source>
        <translation>ist beschädigt</translation>
    </message>
    <message>
        <source>is encrypted</source>
        <translation>ist verschlüsselt</translation>
    </message>
    <message>
        <source>names a file of this computer, which is not opened</source>
        <translation>verweist auf eine Datei dieses Computers, die nicht geöffnet wird</translation>
    </message>
    <message>
        <source>cannot be found (HTTP %1)</source>
        <translation>kann nicht gefunden werden (HTTP %1)</translation>
    </message>
    <message>
        <source>is refused by its server (HTTP %1)</source>
        <translation>wird vom Server verweigert (HTTP %1)</translation>
    </message>
    <message>
        <source>needs a part of GStreamer that is not installed: %1</source>
        <translation>benötigt einen Teil von GStreamer, der nicht installiert ist: %1</translation>
    </message>
    <message>
        <source>is a web page, not sound</source>
        <translation>ist eine Webseite, kein Ton</translation>
    </message>
    <message>
        <source>the stream has ended</source>
        <translation>der Stream ist zu Ende</translation>
    </message>
    <message>
        <source>nothing came for 10 seconds</source>
        <translation>seit 10 Sekunden kam nichts</translation>
    </message>
    <message>
        <source>does not answer</source>
        <translation>antwortet nicht</translation>
    </message>
    <message>
        <source>%1 of its %2 seconds of sound are missing or damaged</source>
        <translation>%1 von %2 Sekunden Ton fehlen oder sind beschädigt</translation>
    </message>
</context>
<context>
    <name>halvenor::ConfigurationWindow</name>
    <message>
        <source>Settings — Halvenor</source>
        <translation>Einstellungen — Halvenor</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Save these settings for next time</source>
        <translation>Diese Einstellungen für das nächste Mal speichern</translation>
    </message>
    <message>
        <source>The settings are saved.</source>
        <translation>Die Einstellungen sind gespeichert.</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;bbrechen</translation>
    </message>
    <message>
        <source>Restore the previous settings and close</source>
        <translation>Die vorherigen Einstellungen wiederherstellen und schließen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Keep these settings and close</source>
        <translation>Diese Einstellungen behalten und schließen</translation>
    </message>
    <message>
        <source>The settings could not be saved (error %1).</source>
        <translation>Die Einstellungen konnten nicht gespeichert werden (Fehler %1).</translation>
    </message>
    <message>
        <source>The full-screen size was refused (error %1).</source>
        <translation>Die Vollbildgröße wurde abgelehnt (Fehler %1).</translation>
    </message>
    <message>
        <source>The settings could not be saved. Close again to close without saving.</source>
        <translation>Die Einstellungen konnten nicht gespeichert werden. Noch einmal schließen, um ohne Speichern zu schließen.</translation>
    </message>
</context>
<context>
    <name>halvenor::ControlServer</name>
    <message>
        <source>Commands of --control cannot be received: %1</source>
        <translation>Befehle von --control können nicht empfangen werden: %1</translation>
    </message>
</context>
<context>
    <name>halvenor::FailureTally</name>
    <message numerus="yes">
        <source>%n more could not be played</source>
        <translation>
            <numerusform>%n weiterer Titel konnte nicht abgespielt werden</numerusform>
            <numerusform>%n weitere Titel konnten nicht abgespielt werden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>Stopped: %n entries in a row could not be played</source>
        <translation>
            <numerusform>Angehalten: %n Titel konnte nicht abgespielt werden</numerusform>
            <numerusform>Angehalten: %n Titel hintereinander konnten nicht abgespielt werden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>None of the %n entries could be played</source>
        <translation>
            <numerusform>Der %n Titel konnte nicht abgespielt werden</numerusform>
            <numerusform>Keiner der %n Titel konnte abgespielt werden</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>halvenor::Files</name>
    <message>
        <source>is a folder</source>
        <translation>ist ein Ordner</translation>
    </message>
    <message>
        <source>is a link</source>
        <translation>ist eine Verknüpfung</translation>
    </message>
    <message>
        <source>is not a regular file</source>
        <translation>ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>is larger than %1 MB</source>
        <translation>ist größer als %1 MB</translation>
    </message>
    <message>
        <source>cannot write to %1: %2</source>
        <translation>In %1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>another program is busy with it</source>
        <translation>ein anderes Programm ist damit beschäftigt</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::FullScreen</name>
    <message>
        <source>Full Screen &amp;On</source>
        <translation>Vollbild &amp;auf Bildschirm</translation>
    </message>
    <message>
        <source>Full Screen Si&amp;ze</source>
        <translation>Vollbild&amp;größe</translation>
    </message>
    <message>
        <source>Size the &amp;Visualizer Asks For, Scaled Up</source>
        <translation>Von der &amp;Visualisierung gewünschte Größe, hochskaliert</translation>
    </message>
    <message>
        <source>Full &amp;Resolution of the Screen</source>
        <translation>Volle &amp;Auflösung des Bildschirms</translation>
    </message>
    <message>
        <source>Screen of the &amp;Window</source>
        <translation>Bildschirm des &amp;Fensters</translation>
    </message>
    <message>
        <source>%1, %2 × %3</source>
        <translation>%1, %2 × %3</translation>
    </message>
</context>
<context>
    <name>halvenor::KeysCard</name>
    <message>
        <source>Keyboard shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>The visualizer has more keys: &lt;b&gt;h&lt;/b&gt; shows them, &lt;b&gt;c&lt;/b&gt; opens its settings.&lt;br&gt;Press any key or click to close this card. Press &lt;b&gt;F1&lt;/b&gt; to show it again.</source>
        <translation>Die Visualisierung hat weitere Tasten: &lt;b&gt;h&lt;/b&gt; zeigt sie, &lt;b&gt;c&lt;/b&gt; öffnet ihre Einstellungen.&lt;br&gt;Eine beliebige Taste oder ein Klick schließt diese Karte. &lt;b&gt;F1&lt;/b&gt; zeigt sie wieder.</translation>
    </message>
</context>
<context>
    <name>halvenor::Listening</name>
    <message>
        <source>Connecting</source>
        <translation>Verbindung wird hergestellt</translation>
    </message>
    <message>
        <source>No signal</source>
        <translation>Kein Signal</translation>
    </message>
    <message>
        <source>The output is muted</source>
        <translation>Die Ausgabe ist stummgeschaltet</translation>
    </message>
    <message>
        <source>The device is gone, waiting</source>
        <translation>Das Gerät ist nicht mehr da, es wird gewartet</translation>
    </message>
    <message>
        <source>No sound server, waiting</source>
        <translation>Kein Soundserver, es wird gewartet</translation>
    </message>
    <message>
        <source>The source %1 is not available. Listening to the default output until it is.</source>
        <translation>Die Quelle %1 ist nicht verfügbar. Bis dahin wird die Standardausgabe gehört.</translation>
    </message>
</context>
<context>
    <name>halvenor::LiveSettings</name>
    <message>
        <source>The autopilot is on, so presets no longer change automatically.</source>
        <translation>Der Autopilot ist an, daher wechseln die Voreinstellungen nicht mehr automatisch.</translation>
    </message>
    <message>
        <source>The look was changed, so the smooth change has ended.</source>
        <translation>Der Look wurde geändert, daher ist der weiche Übergang beendet.</translation>
    </message>
    <message>
        <source>A preset was chosen, so the autopilot is off.</source>
        <translation>Eine Voreinstellung wurde gewählt, daher ist der Autopilot aus.</translation>
    </message>
    <message>
        <source>Presets change automatically, so the autopilot is off.</source>
        <translation>Die Voreinstellungen wechseln automatisch, daher ist der Autopilot aus.</translation>
    </message>
</context>
<context>
    <name>halvenor::MainWindow</name>
    <message>
        <source>The visualizer gets every key without Ctrl first; press h to see its keys.</source>
        <translation>Die Visualisierung erhält jede Taste ohne Strg zuerst; h zeigt ihre Tasten.</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>The visualizer&apos;s settings window cannot be opened (error %1)</source>
        <translation>Das Einstellungsfenster der Visualisierung kann nicht geöffnet werden (Fehler %1)</translation>
    </message>
    <message>
        <source>About Halvenor</source>
        <translation>Über Halvenor</translation>
    </message>
    <message>
        <source>&lt;h3&gt;Halvenor %1&lt;/h3&gt;&lt;p&gt;Turns music into a moving picture: what this computer plays, your own files and internet radio.&lt;/p&gt;&lt;p&gt;Copyright 2026 the Halvenor authors. MIT License.&lt;/p&gt;</source>
        <translation>&lt;h3&gt;Halvenor %1&lt;/h3&gt;&lt;p&gt;Macht aus Musik ein bewegtes Bild: aus dem, was dieser Computer abspielt, aus eigenen Dateien und aus Internetradio.&lt;/p&gt;&lt;p&gt;Copyright 2026 die Autoren von Halvenor. MIT-Lizenz.&lt;/p&gt;</translation>
    </message>
    <message>
        <source>%1 - %2</source>
        <translation>%1 - %2</translation>
    </message>
    <message>
        <source>The picture cannot be shown</source>
        <translation>Das Bild kann nicht angezeigt werden</translation>
    </message>
    <message>
        <source>The picture cannot be shown: %1</source>
        <translation>Das Bild kann nicht angezeigt werden: %1</translation>
    </message>
    <message>
        <source>The visualizer reports a problem: %1</source>
        <translation>Die Visualisierung meldet ein Problem: %1</translation>
    </message>
</context>
<context>
    <name>halvenor::MessageLine</name>
    <message>
        <source>All Messages</source>
        <translation>Alle Meldungen</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
</context>
<context>
    <name>halvenor::Opening</name>
    <message>
        <source>Open Files</source>
        <translation>Dateien öffnen</translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
    <message>
        <source>Audio and playlists (%1)</source>
        <translation>Audio und Wiedergabelisten (%1)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Open Address</source>
        <translation>Adresse öffnen</translation>
    </message>
    <message>
        <source>Address of an internet radio station or of any other audio:</source>
        <translation>Adresse eines Internetradiosenders oder anderer Audioinhalte:</translation>
    </message>
    <message>
        <source>No Recent Media</source>
        <translation>Keine zuletzt geöffneten Medien</translation>
    </message>
    <message>
        <source>&amp;Clear List</source>
        <translation>&amp;Liste leeren</translation>
    </message>
</context>
<context>
    <name>halvenor::Player</name>
    <message>
        <source>No signal: %1 is paused</source>
        <translation>Kein Signal: %1 ist angehalten</translation>
    </message>
    <message>
        <source>Connection lost, reconnecting</source>
        <translation>Verbindung verloren, neuer Versuch</translation>
    </message>
    <message>
        <source>Opening</source>
        <translation>Wird geöffnet</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>Angehalten</translation>
    </message>
    <message>
        <source>No data, waiting</source>
        <translation>Keine Daten, es wird gewartet</translation>
    </message>
    <message>
        <source>Silence</source>
        <translation>Stille</translation>
    </message>
    <message>
        <source>Nothing is playing</source>
        <translation>Es läuft nichts</translation>
    </message>
</context>
<context>
    <name>halvenor::Playlist</name>
    <message>
        <source>Further problems of this kind: %1</source>
        <translation>Weitere Probleme dieser Art: %1</translation>
    </message>
    <message>
        <source>Too many missing files; stopped checking</source>
        <translation>Zu viele fehlende Dateien; Prüfung abgebrochen</translation>
    </message>
    <message>
        <source>only the first %1 entries were taken</source>
        <translation>nur die ersten %1 Einträge wurden übernommen</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>an entry is not there: %1</source>
        <translation>ein Eintrag ist nicht vorhanden: %1</translation>
    </message>
    <message>
        <source>is not a playlist</source>
        <translation>ist keine Wiedergabeliste</translation>
    </message>
    <message>
        <source>lies in too many other lists</source>
        <translation>ist zu tief in anderen Listen verschachtelt</translation>
    </message>
    <message>
        <source>names itself, or is named twice</source>
        <translation>nennt sich selbst oder wird zweimal genannt</translation>
    </message>
    <message>
        <source>is too large for a playlist</source>
        <translation>ist zu groß für eine Wiedergabeliste</translation>
    </message>
    <message>
        <source>an entry is no address: %1</source>
        <translation>ein Eintrag ist keine Adresse: %1</translation>
    </message>
    <message>
        <source>is damaged</source>
        <translation>ist beschädigt</translation>
    </message>
</context>
<context>
    <name>halvenor::PlaylistFetch</name>
    <message>
        <source>%1 does not answer</source>
        <translation>%1 antwortet nicht</translation>
    </message>
    <message>
        <source>%1 is too large for a playlist</source>
        <translation>%1 ist zu groß für eine Wiedergabeliste</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetChooser</name>
    <message>
        <source>My Look</source>
        <translation>Mein Look</translation>
    </message>
    <message>
        <source>The look was not saved: %1. Check that there is free space and that you may write there, then press s again.</source>
        <translation>Der Look wurde nicht gespeichert: %1. Bitte prüfen, ob Platz frei ist und dort geschrieben werden darf, dann noch einmal s drücken.</translation>
    </message>
    <message>
        <source>Saved this look as &quot;%1&quot;.</source>
        <translation>Dieser Look ist als „%1“ gespeichert.</translation>
    </message>
    <message>
        <source>How presets change could not be saved in %1.</source>
        <translation>Wie die Voreinstellungen wechseln, konnte nicht in %1 gespeichert werden.</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetDelegate</name>
    <message>
        <source>Name of the Preset</source>
        <translation>Name der Voreinstellung</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetList</name>
    <message>
        <source>Presets</source>
        <translation>Voreinstellungen</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetModel</name>
    <message>
        <source>, favorite</source>
        <translation>, Favorit</translation>
    </message>
    <message>
        <source>, chosen</source>
        <translation>, gewählt</translation>
    </message>
</context>
<context>
    <name>halvenor::PresetPanel</name>
    <message>
        <source>Previous Preset</source>
        <translation>Vorherige Voreinstellung</translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <translation>&amp;Vorige</translation>
    </message>
    <message>
        <source>Next Preset</source>
        <translation>Nächste Voreinstellung</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Nächste</translation>
    </message>
    <message>
        <source>Random Preset</source>
        <translation>Zufällige Voreinstellung</translation>
    </message>
    <message>
        <source>&amp;Random</source>
        <translation>&amp;Zufall</translation>
    </message>
    <message>
        <source>Add the Current Look</source>
        <translation>Aktuellen Look hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Duplizieren</translation>
    </message>
    <message>
        <source>Dupl&amp;icate</source>
        <translation>Du&amp;plizieren</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Replace with the Current Look</source>
        <translation>Durch den aktuellen Look ersetzen</translation>
    </message>
    <message>
        <source>Favorite</source>
        <translation>Favorit</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>D&amp;elete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Und&amp;o</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>Restore Factory Presets</source>
        <translation>Mitgelieferte Voreinstellungen wiederherstellen</translation>
    </message>
    <message>
        <source>Import...</source>
        <translation>Importieren...</translation>
    </message>
    <message>
        <source>Export This Preset...</source>
        <translation>Diese Voreinstellung exportieren...</translation>
    </message>
    <message>
        <source>Export All Presets...</source>
        <translation>Alle Voreinstellungen exportieren...</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search presets</source>
        <translation>Voreinstellungen suchen</translation>
    </message>
    <message>
        <source>Show only favorites</source>
        <translation>Nur Favoriten anzeigen</translation>
    </message>
    <message>
        <source>&amp;More</source>
        <translation>&amp;Mehr</translation>
    </message>
    <message>
        <source>More preset actions</source>
        <translation>Weitere Aktionen für Voreinstellungen</translation>
    </message>
    <message>
        <source>Changing Presets</source>
        <translation>Wechsel der Voreinstellungen</translation>
    </message>
    <message>
        <source>Manua&amp;l</source>
        <translation>Man&amp;uell</translation>
    </message>
    <message>
        <source>Automaticall&amp;y, every</source>
        <translation>&amp;Automatisch, alle</translation>
    </message>
    <message>
        <source>Random or&amp;der</source>
        <translation>Zufäll&amp;ige Folge</translation>
    </message>
    <message>
        <source>Fa&amp;vorites only</source>
        <translation>Nur &amp;Favoriten</translation>
    </message>
    <message>
        <source>Manual: presets change by hand</source>
        <translation>Manuell: Voreinstellungen von Hand wechseln</translation>
    </message>
    <message>
        <source>Presets change automatically</source>
        <translation>Voreinstellungen wechseln automatisch</translation>
    </message>
    <message>
        <source>Seconds between preset changes</source>
        <translation>Sekunden zwischen den Wechseln</translation>
    </message>
    <message>
        <source>Duration of a smooth change in seconds</source>
        <translation>Dauer eines weichen Übergangs in Sekunden</translation>
    </message>
    <message>
        <source>Random order</source>
        <translation>Zufällige Reihenfolge</translation>
    </message>
    <message>
        <source>Use only favorites</source>
        <translation>Nur Favoriten verwenden</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>Smoo&amp;th change</source>
        <translation>Wei&amp;cher Übergang</translation>
    </message>
    <message>
        <source>Undo: %1</source>
        <translation>Rückgängig: %1</translation>
    </message>
    <message>
        <source>&quot;%1&quot; is deleted. %2 brings it back.</source>
        <translation>„%1“ ist gelöscht. %2 macht es rückgängig.</translation>
    </message>
    <message>
        <source>Undone: %1</source>
        <translation>Rückgängig gemacht: %1</translation>
    </message>
    <message>
        <source>The factory presets are restored.</source>
        <translation>Die mitgelieferten Voreinstellungen sind wiederhergestellt.</translation>
    </message>
    <message>
        <source>Presets (*.preset)</source>
        <translation>Voreinstellungen (*.preset)</translation>
    </message>
    <message>
        <source>All Files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Import Presets</source>
        <translation>Voreinstellungen importieren</translation>
    </message>
    <message>
        <source>One preset imported.</source>
        <translation>Eine Voreinstellung importiert.</translation>
    </message>
    <message numerus="yes">
        <source>%n presets imported.</source>
        <translation>
            <numerusform>%n Voreinstellung importiert.</numerusform>
            <numerusform>%n Voreinstellungen importiert.</numerusform>
        </translation>
    </message>
    <message>
        <source>Halvenor Presets</source>
        <translation>Halvenor-Voreinstellungen</translation>
    </message>
    <message>
        <source>Export Presets</source>
        <translation>Voreinstellungen exportieren</translation>
    </message>
    <message>
        <source>Exported to %1.</source>
        <translation>Nach %1 exportiert.</translation>
    </message>
</context>
<context>
    <name>halvenor::Presets</name>
    <message>
        <source>is not a preset file</source>
        <translation>ist keine Datei mit Voreinstellungen</translation>
    </message>
    <message>
        <source>has %1 twice</source>
        <translation>enthält %1 doppelt</translation>
    </message>
    <message>
        <source>is in a newer format (%1; this version reads %2)</source>
        <translation>hat ein neueres Format (%1; diese Version liest %2)</translation>
    </message>
    <message>
        <source>is not a preset file: it is empty</source>
        <translation>ist keine Datei mit Voreinstellungen: sie ist leer</translation>
    </message>
    <message>
        <source>is not a preset file: it is not text</source>
        <translation>ist keine Datei mit Voreinstellungen: sie ist kein Text</translation>
    </message>
    <message>
        <source>its files</source>
        <translation>seine Dateien</translation>
    </message>
    <message>
        <source>has a preset without a name, [%1]</source>
        <translation>enthält eine Voreinstellung ohne Namen, [%1]</translation>
    </message>
    <message>
        <source>has a bad value in &quot;%1&quot;: %2</source>
        <translation>enthält einen falschen Wert in „%1“: %2</translation>
    </message>
    <message>
        <source>contains no preset</source>
        <translation>enthält keine Voreinstellung</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>there is no preset to write</source>
        <translation>es gibt keine Voreinstellung zu schreiben</translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation>es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>There is nothing to undo.</source>
        <translation>Es gibt nichts rückgängig zu machen.</translation>
    </message>
    <message>
        <source>A preset needs a name.</source>
        <translation>Eine Voreinstellung braucht einen Namen.</translation>
    </message>
    <message>
        <source>There is already a preset called &quot;%1&quot;.</source>
        <translation>Es gibt schon eine Voreinstellung namens „%1“.</translation>
    </message>
    <message>
        <source>There is no preset &quot;%1&quot;.</source>
        <translation>Es gibt keine Voreinstellung „%1“.</translation>
    </message>
    <message>
        <source>Add &quot;%1&quot;</source>
        <translation>„%1“ hinzufügen</translation>
    </message>
    <message>
        <source>Duplicate &quot;%1&quot;</source>
        <translation>„%1“ duplizieren</translation>
    </message>
    <message>
        <source>Rename &quot;%1&quot;</source>
        <translation>„%1“ umbenennen</translation>
    </message>
    <message>
        <source>Change &quot;%1&quot;</source>
        <translation>„%1“ ändern</translation>
    </message>
    <message>
        <source>Delete &quot;%1&quot;</source>
        <translation>„%1“ löschen</translation>
    </message>
    <message>
        <source>Mark &quot;%1&quot;</source>
        <translation>„%1“ als Favorit markieren</translation>
    </message>
    <message>
        <source>Unmark &quot;%1&quot;</source>
        <translation>„%1“ nicht mehr als Favorit</translation>
    </message>
    <message>
        <source>Restore Factory Presets</source>
        <translation>Mitgelieferte Voreinstellungen wiederherstellen</translation>
    </message>
    <message>
        <source>Import &quot;%1&quot;</source>
        <translation>„%1“ importieren</translation>
    </message>
    <message>
        <source>cannot write %1: it is the folder of the presets</source>
        <translation>%1 kann nicht geschrieben werden: das ist der Ordner der Voreinstellungen</translation>
    </message>
    <message>
        <source>contains several presets: import it instead</source>
        <translation>enthält mehrere Voreinstellungen: bitte stattdessen importieren</translation>
    </message>
    <message>
        <source>has a name other than a-z, 0-9, - and _: rename or import it</source>
        <translation>hat einen Namen aus anderem als a-z, 0-9, - und _: bitte umbenennen oder importieren</translation>
    </message>
    <message>
        <source>%1: %2; favorites and removed presets are unknown</source>
        <translation>%1: %2; Favoriten und entfernte Voreinstellungen sind unbekannt</translation>
    </message>
    <message>
        <source>cannot write to %1: %2</source>
        <translation>In %1 kann nicht geschrieben werden: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::ProgramSettings</name>
    <message>
        <source>Some settings in %1 cannot be read. Correct the file or remove it.</source>
        <translation>Einige Einstellungen in %1 können nicht gelesen werden. Bitte die Datei berichtigen oder entfernen.</translation>
    </message>
    <message>
        <source>The settings cannot be saved in %1. Check that there is space and that you may write there.</source>
        <translation>Die Einstellungen können nicht in %1 gespeichert werden. Bitte prüfen, ob Platz frei ist und dort geschrieben werden darf.</translation>
    </message>
</context>
<context>
    <name>halvenor::QueuePlayback</name>
    <message>
        <source>%1 contains nothing that can be played</source>
        <translation>%1 enthält nichts, was abgespielt werden kann</translation>
    </message>
</context>
<context>
    <name>halvenor::ScreenSaver</name>
    <message>
        <source>Showing music in full screen</source>
        <translation>Musik wird im Vollbild gezeigt</translation>
    </message>
</context>
<context>
    <name>halvenor::SettingField</name>
    <message>
        <source>Picture</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Texts</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Bildschirm</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>Linear</translation>
    </message>
    <message>
        <source>Square root</source>
        <translation>Quadratwurzel</translation>
    </message>
    <message>
        <source>Logarithmic</source>
        <translation>Logarithmisch</translation>
    </message>
    <message>
        <source>Blended</source>
        <translation>Gemischt</translation>
    </message>
    <message>
        <source>s</source>
        <translation>s</translation>
    </message>
    <message>
        <source>Always</source>
        <translation>Immer</translation>
    </message>
    <message>
        <source>fps</source>
        <translation>Bilder/s</translation>
    </message>
    <message>
        <source>Unlimited</source>
        <translation>Unbegrenzt</translation>
    </message>
    <message>
        <source>Intensity</source>
        <translation>Intensität</translation>
    </message>
    <message>
        <source>Fade</source>
        <translation>Ausblenden</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Zoom Rotation</source>
        <translation>Zoomdrehung</translation>
    </message>
    <message>
        <source>Lines</source>
        <translation>Linien</translation>
    </message>
    <message>
        <source>Inner Color</source>
        <translation>Innere Farbe</translation>
    </message>
    <message>
        <source>Outer Color</source>
        <translation>Äußere Farbe</translation>
    </message>
    <message>
        <source>Smoothing</source>
        <translation>Glättung</translation>
    </message>
    <message>
        <source>Glow</source>
        <translation>Leuchten</translation>
    </message>
    <message>
        <source>Color Cycle</source>
        <translation>Farbwechsel</translation>
    </message>
    <message>
        <source>Sharp Overlay</source>
        <translation>Scharfe Überlagerung</translation>
    </message>
    <message>
        <source>Show Frame Rate</source>
        <translation>Bildrate anzeigen</translation>
    </message>
    <message>
        <source>Frequency Scale</source>
        <translation>Frequenzskala</translation>
    </message>
    <message>
        <source>Full Screen Width</source>
        <translation>Vollbildbreite</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Full Screen Height</source>
        <translation>Vollbildhöhe</translation>
    </message>
    <message>
        <source>Title Duration</source>
        <translation>Titel anzeigen</translation>
    </message>
    <message>
        <source>Frequency Labels</source>
        <translation>Frequenzmarken</translation>
    </message>
    <message>
        <source>Autopilot</source>
        <translation>Autopilot</translation>
    </message>
    <message>
        <source>Vertical Layout</source>
        <translation>Senkrechte Anordnung</translation>
    </message>
    <message>
        <source>Font Size</source>
        <translation>Schriftgröße</translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation>Bildrate</translation>
    </message>
</context>
<context>
    <name>halvenor::SettingsPage</name>
    <message>
        <source>Use This Screen&apos;s Size</source>
        <translation>Größe dieses Bildschirms</translation>
    </message>
</context>
<context>
    <name>halvenor::SignalLine</name>
    <message>
        <source>Signal</source>
        <translation>Signal</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Pegel</translation>
    </message>
    <message>
        <source>Choose Source... (O)</source>
        <translation>Quelle wählen... (O)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>halvenor::SourceMenu</name>
    <message>
        <source>&amp;What This Computer Plays</source>
        <translation>&amp;Was dieser Computer abspielt</translation>
    </message>
    <message>
        <source>Audio &amp;Delay...</source>
        <translation>&amp;Audioverzögerung...</translation>
    </message>
    <message>
        <source>Microphones</source>
        <translation>Mikrofone</translation>
    </message>
    <message>
        <source>Outputs</source>
        <translation>Ausgaben</translation>
    </message>
    <message>
        <source>Audio Delay</source>
        <translation>Audioverzögerung</translation>
    </message>
    <message>
        <source>Delay the picture by this many milliseconds, in addition to the
latency that %1 reports:</source>
        <translation>Das Bild um so viele Millisekunden verzögern, zusätzlich zur
Latenz, die %1 meldet:</translation>
    </message>
</context>
<context>
    <name>halvenor::TransportBar</name>
    <message>
        <source>Transport</source>
        <translation>Wiedergabesteuerung</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Vorheriger Titel</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Nächster Titel</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stummschalten</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Unmute</source>
        <translation>Ton einschalten</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <translation>%1 / %2</translation>
    </message>
</context>
<context>
    <name>halvenor::UserActions</name>
    <message>
        <source>&amp;Open Files...</source>
        <translation>&amp;Dateien öffnen...</translation>
    </message>
    <message>
        <source>Open &amp;Folder...</source>
        <translation>&amp;Ordner öffnen...</translation>
    </message>
    <message>
        <source>Open &amp;Address...</source>
        <translation>&amp;Adresse öffnen...</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Play or Pause</source>
        <translation>&amp;Wiedergabe oder Pause</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Stopp</translation>
    </message>
    <message>
        <source>P&amp;revious</source>
        <translation>&amp;Vorheriger Titel</translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <translation>&amp;Nächster Titel</translation>
    </message>
    <message>
        <source>&amp;Back 5 Seconds</source>
        <translation>5 Sekunden &amp;zurück</translation>
    </message>
    <message>
        <source>&amp;Forward 5 Seconds</source>
        <translation>5 Sekunden v&amp;or</translation>
    </message>
    <message>
        <source>Volume &amp;Up</source>
        <translation>&amp;Lauter</translation>
    </message>
    <message>
        <source>Volume &amp;Down</source>
        <translation>L&amp;eiser</translation>
    </message>
    <message>
        <source>&amp;Mute</source>
        <translation>Stu&amp;mmschalten</translation>
    </message>
    <message>
        <source>&amp;Choose Source...</source>
        <translation>&amp;Quelle wählen...</translation>
    </message>
    <message>
        <source>&amp;Full Screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>&amp;Leave Full Screen</source>
        <translation>Vollbild ver&amp;lassen</translation>
    </message>
    <message>
        <source>&amp;Transport Bar</source>
        <translation>&amp;Wiedergabeleiste</translation>
    </message>
    <message>
        <source>Keep &amp;Drawing When Idle</source>
        <translation>Im Leerlauf weiter&amp;zeichnen</translation>
    </message>
    <message>
        <source>&amp;Configure %1...</source>
        <translation>%1 &amp;einrichten...</translation>
    </message>
    <message>
        <source>&amp;Keyboard Shortcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>&amp;About Halvenor</source>
        <translation>Ü&amp;ber Halvenor</translation>
    </message>
</context>
<context>
    <name>halvenor::Visualizer</name>
    <message>
        <source>The visualizer&apos;s settings cannot be read, so it starts with its defaults: %1.</source>
        <translation>Die Einstellungen der Visualisierung können nicht gelesen werden, daher startet sie mit den Vorgaben: %1.</translation>
    </message>
    <message>
        <source>The visualizer&apos;s settings cannot be saved: %1. Check that there is free space and that you may write there.</source>
        <translation>Die Einstellungen der Visualisierung können nicht gespeichert werden: %1. Bitte prüfen, ob Platz frei ist und dort geschrieben werden darf.</translation>
    </message>
</context>
</TS>
