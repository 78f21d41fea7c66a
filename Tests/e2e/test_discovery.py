"""Devices that announce themselves by multicast on a network of several machines."""

import case
import lancase

# Announcements come every 4 s; whoever is silent goes with the first one that finds 10 s over.
EXPIRY_LIMIT = 30.0
SONGS = {"song.wav": b"song", "Music/live.wav": b"live"}
NOTES = {"notes.txt": b"notes"}


class DiscoveryTest(lancase.LanCase):
    def test_found_devices_are_connected_to_and_browsed(self):
        machines = {name: self.serve_on_lan(name, files)[1].address
                    for name, files in (("Songs box", SONGS), ("Boîte à notes", NOTES))}
        quillbox = self.start(self.home)
        for name, files in (("Songs box", SONGS), ("Boîte à notes", NOTES)):
            dialog = quillbox.open_selection()
            quillbox.wait_for_devices(dialog, machines)
            quillbox.choose_device(dialog, name)
            quillbox.confirm_selection(dialog, name)
            quillbox.wait_for_listing("/", case.top_names(files))
            quillbox.disconnect()
        for address in machines.values():
            self.assertIn(f"New device host: {address}", quillbox.log_lines())

    def test_a_found_device_is_walked_through(self):
        self.serve_on_lan("Songs box", SONGS)
        quillbox = self.start(self.home)
        dialog = quillbox.open_selection()
        quillbox.wait_for_devices(dialog, ["Songs box"])
        quillbox.confirm_selection(dialog, "Songs box")
        quillbox.open_folder("Music")
        quillbox.wait_for_listing("/Music", ["live.wav"])

    def test_a_silent_device_goes_after_a_while(self):
        silent, _ = self.serve_on_lan("Silent", NOTES)
        self.serve_on_lan("Talking", SONGS)
        quillbox = self.start(self.home)
        dialog = quillbox.open_selection()
        quillbox.wait_for_devices(dialog, ["Silent", "Talking"])
        silent.kill()
        self.assertEqual(sorted(quillbox.refresh_devices(dialog)), ["Silent", "Talking"])
        quillbox.wait_for_devices(dialog, ["Talking"], EXPIRY_LIMIT)
        self.assertIn("Discover - Removing device host: Silent", quillbox.log_lines())
        silent.start()
        quillbox.wait_for_devices(dialog, ["Silent", "Talking"])

    def test_desktops_are_no_devices(self):
        self.serve_on_lan("Songs box", SONGS)
        neighbour = self.lan.add_host()
        second = case.Quillbox(self.desktop, neighbour)
        quillbox = self.start(self.home)
        # Each hears the other, and what comes back of its own announcements is not for it.
        quillbox.wait_for_log(f"New desktop host: {neighbour.address}")
        second.wait_for_log(f"New desktop host: {self.home.address}")
        self.assertNotIn(f"New desktop host: {self.home.address}", quillbox.log_lines())
        self.assertNotIn(f"New desktop host: {neighbour.address}", second.log_lines())
        quillbox.wait_for_devices(quillbox.open_selection(), ["Songs box"])

    def test_the_choice_is_remembered(self):
        self.serve_on_lan("First", SONGS)
        chosen, _ = self.serve_on_lan("Chosen", NOTES)
        quillbox = self.start(self.home)
        dialog = quillbox.open_selection()
        quillbox.wait_for_devices(dialog, ["First", "Chosen"])
        quillbox.choose_device(dialog, "Chosen")
        quillbox.confirm_selection(dialog, "Chosen")
        self.desktop.close_window(quillbox.main)
        self.assertEqual(quillbox.program.process.wait(), 0)

        # Heard of last, it stands last: its row is not selected just for being the first.
        chosen.stop()
        again = self.start(self.home)
        dialog = again.open_selection()
        self.assertTrue(dialog.find("Use found device", "radio button").has_state("checked"))
        again.wait_for_devices(dialog, ["First"])
        chosen.start()
        devices = again.wait_for_devices(dialog, ["First", "Chosen"])
        self.assertEqual(devices.column(0), ["First", "Chosen"])
        self.assertEqual(devices.selected_rows(), [1])
        again.confirm_selection(dialog, "Chosen")


class SideBySideTest(lancase.LanCase):
    def test_two_programs_of_one_machine_hear_the_same_device(self):
        pair = [self.start(self.home), self.start(self.home)]
        _, host = self.serve_on_lan("Songs box", SONGS)
        for quillbox in pair:
            quillbox.wait_for_log(f"New device host: {host.address}")
            dialog = quillbox.open_selection()
            quillbox.wait_for_devices(dialog, ["Songs box"])
            quillbox.confirm_selection(dialog, "Songs box")
            quillbox.wait_for_listing("/", case.top_names(SONGS))

    def test_a_device_on_the_same_machine_is_found(self):
        self.serve(SONGS, announce=["--announce-to", "127.0.0.1"], host=self.home)
        quillbox = self.start(self.home)
        dialog = quillbox.open_selection()
        quillbox.wait_for_devices(dialog, ["Test device"])
        quillbox.confirm_selection(dialog, "Test device")


if __name__ == "__main__":
    lancase.main()
