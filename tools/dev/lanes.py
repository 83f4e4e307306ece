"""Commands side by side, so that a core that one of them leaves idle has work from another."""

import concurrent.futures
import signal
import subprocess
import sys
import threading
import time


class Lanes:
    """Runs commands in order, a few at once. The title of each, its duration and what it came to are
    shown when it ends; on a terminal the last line says what is running."""

    def __init__(self, count, stream):
        self.count, self.stream = count, stream
        self.running = {}  # title -> process, start
        self.lock = threading.Lock()
        self.is_stopped = False

    def run(self, commands, show):
        """`commands` is title -> command. Calls show(title, seconds, output) for each that ends, in
        the order of their ends, and shows the text that it returns."""
        for number in (signal.SIGINT, signal.SIGTERM):
            signal.signal(number, self._stop)
        ended = threading.Event()
        if self.stream.isatty():
            threading.Thread(target=self._tick, args=[ended], daemon=True).start()
        with concurrent.futures.ThreadPoolExecutor(self.count) as pool:
            futures = [pool.submit(self._run_one, *each) for each in commands.items()]
            for future in concurrent.futures.as_completed(futures):
                self._write(show(*future.result()) + "\n")
        ended.set()

    def _run_one(self, title, command):
        with self.lock:
            if self.is_stopped:
                return title, 0.0, ""
            start = time.monotonic()
            process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
            self.running[title] = process, start
        output, _ = process.communicate()
        with self.lock:
            del self.running[title]
        return title, time.monotonic() - start, output

    def _stop(self, number, _):
        self.is_stopped = True
        for process, _ in list(self.running.values()):
            process.terminate()
        sys.exit(128 + number)

    def _tick(self, ended):
        while not ended.wait(1):
            now = time.monotonic()
            running = [f"{title} {now - start:.0f} s" for title, (_, start) in list(self.running.items())]
            self._write("   " + ", ".join(running))

    def _write(self, text):
        """A text without a newline is the last line of a terminal until the next one comes."""
        with self.lock:
            self.stream.write(("\r\033[K" if self.stream.isatty() else "") + text)
            self.stream.flush()
