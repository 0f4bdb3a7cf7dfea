#!/usr/bin/env python3
"""Internet radio on loopback that misbehaves as it is told.

Writes its port to a file and serves GET /WAY?..., where WAY is one of
  good    sends FILE again and again, with titles, at five times its speed
  short   ends after two seconds' worth of FILE
  stall   sends two seconds' worth and then nothing
  drop    the same, then cuts the connection
  lie     as good, called a picture
  page    a web page called sound
  long    as good, with a title of 4000 characters, some of which are none
  gone    404
  file    FILE itself, from any place on
  whole   the same from its start, whatever is asked for
  cut     six seconds' worth of it, as fast as good, and the connection is cut two seconds later
/WAY.pls is a playlist that names the way; /drip.pls never comes to its end. A way "A,B" is A for the first listener and B for all after it.
"""
import http.server, itertools, os, socket, struct, sys, time

SOUND = open(sys.argv[1], "rb").read()
RATE = int(sys.argv[2])  # bytes a second
INTERVAL = 2000
listeners = {}


def metadata(number, way):
    title = "Someone - Song %d" % (number // 20)
    if way == "long":
        title = "Long \x01\xff" + "x" * 4000
    text = ("StreamTitle='%s';" % title).encode("latin-1")
    blocks = (len(text) + 15) // 16
    return bytes([blocks]) + text.ljust(blocks * 16, b"\0")


class Radio(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.0"

    def log_message(self, *arguments):
        pass

    def do_GET(self):
        if self.path.endswith(".pls"):
            self.send_response(200)
            self.end_headers()
            while self.path == "/drip.pls":
                self.wfile.write(b"\n")
                time.sleep(0.1)
            self.wfile.write(b"[playlist]\nFile1=" + self.path[1:-4].encode() + b"\n")
            return
        ways = self.path.strip("/").split(",")
        count = listeners[self.path] = listeners.get(self.path, 0) + 1
        way = ways[min(count, len(ways)) - 1]
        if way == "gone":
            self.send_error(404)
            return
        if way in ("file", "cut", "whole"):
            self.send_file(way)
            return
        kind = {"page": "audio/mpeg", "lie": "image/png"}.get(way, "audio/mpeg")
        self.send_response(200)
        self.send_header("Content-Type", kind)
        if way == "page":
            self.end_headers()
            self.wfile.write(b"<!DOCTYPE html><html><body>" + b"<p>No sound</p>" * 900)
            return
        titled = self.headers.get("Icy-MetaData") == "1"
        self.send_header("icy-name", "Loopback FM")
        if titled:
            self.send_header("icy-metaint", str(INTERVAL))
        self.end_headers()
        self.send_sound(way, titled)

    def send_file(self, way):
        part = self.headers.get("Range") if way != "whole" else None
        begin = int(part[6:].split("-")[0]) if part else 0
        self.send_response(206 if part else 200)
        self.send_header("Content-Length", len(SOUND) - begin)
        if part:
            place = (begin, len(SOUND) - 1, len(SOUND))
            self.send_header("Content-Range", "bytes %d-%d/%d" % place)
        self.end_headers()
        if way != "cut":
            self.wfile.write(SOUND[begin:])
            return
        for at in range(begin, 6 * RATE, INTERVAL):
            self.wfile.write(SOUND[at : at + INTERVAL])
            time.sleep(INTERVAL / RATE / 5)
        time.sleep(2)
        self.reset()

    def reset(self):  # instead of an end
        now = struct.pack("ii", 1, 0)
        self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, now)

    def send_sound(self, way, titled):
        endless = itertools.cycle(
            [SOUND[i : i + INTERVAL] for i in range(0, len(SOUND) - INTERVAL, INTERVAL)]
        )
        for number, piece in enumerate(endless):
            if way in ("short", "stall", "drop") and number * INTERVAL > 2 * RATE:
                break
            self.wfile.write(piece + (metadata(number, way) if titled else b""))
            time.sleep(INTERVAL / RATE / 5)
        if way == "stall":
            time.sleep(60)
        if way == "drop":
            self.reset()


class Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request, client):  # listeners leave as they like
        pass


server = Server(("127.0.0.1", 0), Radio)
with open(sys.argv[3] + ".new", "w") as port:
    port.write(str(server.server_address[1]))
os.rename(sys.argv[3] + ".new", sys.argv[3])
server.serve_forever()
