"""The update service, for a program that was built to ask this machine: as the proxy of its network."""

import http.server
import os
import plistlib
import threading


class UpdateService:
    """Answers a program's question for the latest release; not before it was told one."""

    def __init__(self, host):
        self.host = host
        self.record = None
        service = self

        class Answer(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                known = service.record is not None and self.path == f"http://{host}/mac/quorvane.plist"
                self.send_response(200 if known else 503)
                self.end_headers()
                if known:
                    self.wfile.write(plistlib.dumps(service.record))

            def log_message(self, *_):
                pass

        self.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Answer)
        threading.Thread(target=self.server.serve_forever, daemon=True).start()
        os.environ["http_proxy"] = f"http://127.0.0.1:{self.server.server_port}"
