"""Stands in for a push service (the FCM HTTP v1 API) on loopback: takes any notification and prints it.

Usage: push_peer.py CERTIFICATE KEY. The first line printed is the port; then one line a notification, its request line
and its body. Ends with the signal that its parent sends.
"""
import http.server
import json
import ssl
import sys


class Service(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        body = self.rfile.read(int(self.headers["content-length"])).decode()
        if self.path == "/token":
            self.answer({"access_token": "demonstration", "expires_in": 3600})
            return
        print("POST", self.path, body, flush=True)
        self.answer({"name": "projects/demo/messages/1"})

    def answer(self, value):
        text = json.dumps(value).encode()
        self.send_response(200)
        self.send_header("content-type", "application/json")
        self.send_header("content-length", str(len(text)))
        self.end_headers()
        self.wfile.write(text)

    def log_message(self, *_):
        pass


certificate, key = sys.argv[1:]
server = http.server.HTTPServer(("127.0.0.1", 0), Service)
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain(certificate, key)
server.socket = context.wrap_socket(server.socket, server_side=True)
print(server.server_address[1], flush=True)
server.serve_forever()
