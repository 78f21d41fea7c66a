"""The base of the end-to-end tests: a desktop for each test, a deadline, and pictures of failures."""

import os
import pathlib
import signal
import sys
import unittest

SKIPPED = 77  # known to CTest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))

try:
    import namespace
    from desktop import REPOSITORY, Desktop, reason_not_to_run
    from device import Device
    from quillbox import Quillbox
    from waiting import Gone
except ImportError as missing:
    print(f"skipped: {missing}")
    sys.exit(SKIPPED)


class Case(unittest.TestCase):
    time_limit = 60
    maxDiff = 2000

    def setUp(self):
        self._arm_deadline()
        self.desktop = self.enterContext(Desktop())
        self.quillbox = None

    def start(self, host=None):
        """Starts the program."""
        self.quillbox = Quillbox(self.desktop, host)
        return self.quillbox

    def serve(self, files, **options):
        """Starts a device that serves these files, contents by path, and returns it with its folder."""
        root = self.desktop.folder("device")
        write_files(root, files)
        return Device(self.desktop, root, **options), root

    def connect(self, files, **options):
        """A program connected to a device with these files; returns the program and the device."""
        device, _ = self.serve(files, **options)
        quillbox = self.start()
        quillbox.connect(options.get("name", "Test device"))
        quillbox.wait_for_listing("/", top_names(files))
        return quillbox, device

    def assert_same_files(self, folder, files):
        """The folder holds exactly these files (contents by path) and nothing else."""
        self.assertEqual(sorted(read_files(folder)), sorted(files))
        self.assertTrue(read_files(folder) == files, "contents differ")

    def show_failure(self):
        """Keeps a picture of the screen and prints what the program said and shows."""
        folder = pathlib.Path(os.environ.get("QUILLBOX_FAILURES", REPOSITORY / "build/failures"))
        try:
            self.desktop.picture(folder / f"{self.id()}.png")
            print(f"\npicture: {folder / self.id()}.png")
            if self.quillbox is not None:
                print(self.quillbox.program.process.output()[-3000:])
                print("\n".join(window.tree() for window in self.quillbox.program.windows()))
        except (Gone, OSError, AttributeError, ValueError) as error:
            print(f"no picture of the failure: {error!r}")

    def _arm_deadline(self):
        def expired(*_):
            raise TimeoutError(f"test took longer than {self.time_limit} s")
        signal.signal(signal.SIGALRM, expired)
        signal.alarm(self.time_limit)
        self.addCleanup(signal.alarm, 0)


class Result(unittest.TextTestResult):
    """Shows a failure while its windows are still there."""

    def addError(self, test, err):
        super().addError(test, err)
        self._show(test)

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self._show(test)

    def addSubTest(self, test, subtest, err):
        super().addSubTest(test, subtest, err)
        if err is not None:
            self._show(test)

    @staticmethod
    def _show(test):
        if isinstance(test, Case):
            test.show_failure()


def write_files(root, files):
    for path, content in files.items():
        target = root / path
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_bytes(content)


def read_files(root):
    """Contents by path of all files below a folder; without those that go while this looks."""
    files = {}
    for path in root.rglob("*"):
        try:
            if path.is_file():
                files[str(path.relative_to(root))] = path.read_bytes()
        except FileNotFoundError:
            pass  # a download that has arrived just now gets its name
    return files


def top_names(files):
    return sorted({path.split("/")[0] for path in files})


def main(more_reasons=lambda: None):
    """Runs the script's tests; skips them for what `reason_not_to_run` or `more_reasons` finds lacking."""
    reason = reason_not_to_run() or more_reasons()
    if reason:
        print(f"skipped: {reason}")
        sys.exit(SKIPPED)
    namespace.enter()
    # Being told to end must still end what was started; unittest lets only this exception through.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    unittest.main(module="__main__", testRunner=unittest.TextTestRunner(resultclass=Result, verbosity=2))
