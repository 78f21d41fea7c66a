"""The base of the end-to-end tests with devices that announce themselves on a network of several machines."""

import case
import lan


class LanCase(case.Case):
    time_limit = 120

    def setUp(self):
        super().setUp()
        self.lan = lan.Lan(self.desktop)
        self.home = self.lan.add_host()

    def serve_on_lan(self, name, files):
        """A device on a machine of its own; returns it and its machine."""
        device, host, _ = self.serve_folder_on_lan(name, files)
        return device, host

    def serve_folder_on_lan(self, name, files):
        """The same with the folder that it serves."""
        host = self.lan.add_host()
        device, root = self.serve(files, name=name, address=host.address, announce=["--announce"], host=host)
        return device, host, root


def main():
    case.main(lan.reason_not_to_run)
