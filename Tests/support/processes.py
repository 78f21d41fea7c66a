"""Child processes that never outlive the driver."""

import os
import signal
import subprocess

from waiting import wait_for

GRACE = 5.0


class Process:
    """One started command, the leader of a process group of its own; its output goes to a file."""

    def __init__(self, argv, env, log, death_signal):
        self.argv = [str(part) for part in argv]
        self.log = log
        # The kernel sends this signal when the driver is killed before it could clean up.
        guard = ["setpriv", "--pdeathsig", death_signal, "--"]
        with open(log, "ab") as out:
            self._popen = subprocess.Popen(guard + self.argv, env=env, stdin=subprocess.DEVNULL, stdout=out,
                                           stderr=subprocess.STDOUT, start_new_session=True)
        self.pid = self._popen.pid

    @property
    def running(self):
        return self._popen.poll() is None

    def output(self):
        return self.log.read_text(errors="replace")

    def wait(self, seconds=15.0):
        """The exit status (negative: the signal's number); TimeoutError when it is still running."""
        try:
            return self._popen.wait(seconds)
        except subprocess.TimeoutExpired:
            raise TimeoutError(f"{self.argv[0]} still runs after {seconds:g} s") from None

    def signal(self, number):
        if self.running:
            os.kill(self.pid, number)

    def wait_for_output(self, text, seconds=15.0):
        def seen():
            if not self.running and text not in self.output():
                raise RuntimeError(f"{self.argv[0]} ended: {self.output()[-2000:]}")
            return text in self.output()
        wait_for(seen, f"'{text}' from {self.argv[0]}", seconds)

    def end(self):
        """Ends the whole group: politely, then for good."""
        if self.running:
            self._signal_group(signal.SIGTERM)
            try:
                self._popen.wait(GRACE)
            except subprocess.TimeoutExpired:
                pass
        self._signal_group(signal.SIGKILL)
        self._popen.wait()

    def peak_memory(self):
        """Peak resident memory so far, in bytes."""
        with open(f"/proc/{self.pid}/status", encoding="ascii") as status:
            for line in status:
                if line.startswith("VmHWM:"):
                    return int(line.split()[1]) * 1024
        raise RuntimeError("no VmHWM in the process status")

    def _signal_group(self, number):
        try:
            os.killpg(self.pid, number)
        except ProcessLookupError:
            pass
