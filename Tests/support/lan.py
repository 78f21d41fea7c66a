"""A small network of machines that share one cable, each with an address and a network stack of its own.

    lan = Lan(desktop)
    first, second = lan.add_host(), lan.add_host()
    desktop.start(["quillbox-device", ...], host=first)

Their programs share everything else: the display, the files, the process numbers. Enter a private namespace
first (see namespace.py); the network ends with the desktop.
"""

import shutil
import subprocess

import namespace

TOOLS = ("ip", "nsenter", "unshare")
CABLE = "lan"
MAKE_CABLE = f"ip link add {CABLE} type bridge mcast_snooping 0 && ip link set {CABLE} up"
MAKE_PLUG = "ip link add plug type veth peer name plugged"


def reason_not_to_run():
    """What this machine lacks for such a network, in words; None when it lacks nothing."""
    namespace.prepare()
    missing = [tool for tool in TOOLS if shutil.which(tool) is None]
    if missing:
        return "missing " + ", ".join(missing)
    if not namespace.can_run(f"{MAKE_CABLE} && {MAKE_PLUG}"):
        return "no network of several machines here: its namespaces, bridges or virtual Ethernet are missing"
    return None


class Stack:
    """A network stack of its own, kept in being by a process. `prefix` before a command has it run there."""

    def __init__(self, desktop):
        holder = desktop.start(["unshare", "--net", "sh", "-c", "echo here; exec sleep infinity"])
        holder.wait_for_output("here")
        self.pid = holder.pid
        self.prefix = ["nsenter", f"--net=/proc/{holder.pid}/ns/net", "--"]

    def run(self, commands):
        subprocess.run([*self.prefix, "sh", "-c", commands], check=True, timeout=20)


class Host(Stack):
    """One machine of the network."""

    def __init__(self, desktop, address):
        super().__init__(desktop)
        self.address = address

    def set_up(self):
        # As on a machine at home: loopback without multicast, and one way out for everything.
        self.run(f"ip link set lo up && ip address add {self.address}/24 dev eth0 && "
                 "ip link set eth0 up && ip route add default dev eth0")


class Lan:
    def __init__(self, desktop):
        self._desktop = desktop
        self._count = 0
        self._switch = Stack(desktop)
        self._switch.run(MAKE_CABLE)

    def add_host(self):
        self._count += 1
        host = Host(self._desktop, f"10.77.0.{self._count}")
        port = f"port{self._count}"
        self._switch.run(f"ip link add {port} type veth peer name eth0 netns {host.pid} && "
                         f"ip link set {port} master {CABLE} up")
        host.set_up()
        return host
