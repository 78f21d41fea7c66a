"""The installed firewall profiles: where their firewalls look, well formed, and named as the guide says."""

import configparser
import os
import pathlib
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("QUILLBOX_BUILD", REPOSITORY / "build/dev"))
CMAKE = os.environ.get("QUILLBOX_CMAKE", "cmake")
PORT = "10245"


class FirewallTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.destination = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        subprocess.run([CMAKE, "--install", BUILD, "--component", "firewall", "--prefix", "/usr"],
                       env={**os.environ, "DESTDIR": str(cls.destination)}, check=True, timeout=50,
                       stdout=subprocess.DEVNULL)
        cls.guide = (REPOSITORY / "docs/user-guide.md").read_text(encoding="utf-8")

    def installed(self, path):
        """The one installed file whose path ends like this."""
        found = [file for file in self.destination.rglob("*") if str(file).endswith(path)]
        self.assertEqual(len(found), 1, path)
        return found[0]

    def test_ufw_profile(self):
        profile = configparser.ConfigParser()
        profile.read_string(self.installed("/etc/ufw/applications.d/quillbox").read_text(encoding="utf-8"))
        self.assertEqual(profile.sections(), ["Quillbox"])
        self.assertEqual(sorted(profile["Quillbox"]), ["description", "ports", "title"])
        self.assertEqual(profile["Quillbox"]["ports"], f"{PORT}/udp")
        self.assertIn("sudo ufw allow Quillbox\n", self.guide)

    def test_firewalld_service(self):
        file = self.installed("/usr/lib/firewalld/services/quillbox.xml")
        service = ElementTree.parse(file).getroot()
        self.assertEqual(service.tag, "service")
        self.assertEqual([port.attrib for port in service.iter("port")], [{"protocol": "udp", "port": PORT}])
        self.assertTrue(service.findtext("short") and service.findtext("description"))
        self.assertIn(f"sudo firewall-cmd --permanent --add-service={file.stem}\n", self.guide)


if __name__ == "__main__":
    unittest.main(verbosity=2)
