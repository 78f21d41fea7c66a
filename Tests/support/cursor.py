"""The mouse pointer's picture on a display, which is what tells a person how a drag stands."""

import contextlib
import ctypes


class CursorImage(ctypes.Structure):
    """XFixesCursorImage of X11/extensions/Xfixes.h."""

    _fields_ = [("x", ctypes.c_short), ("y", ctypes.c_short),
                ("width", ctypes.c_ushort), ("height", ctypes.c_ushort),
                ("hot_x", ctypes.c_ushort), ("hot_y", ctypes.c_ushort),
                ("serial", ctypes.c_ulong), ("pixels", ctypes.POINTER(ctypes.c_ulong)),
                ("atom", ctypes.c_ulong), ("name", ctypes.c_char_p)]


class Cursor:
    """Watches the pointer's picture; close it before its display ends."""

    def __init__(self, display):
        self._x11 = ctypes.CDLL("libX11.so.6")
        self._fixes = ctypes.CDLL("libXfixes.so.3")
        self._x11.XOpenDisplay.restype = ctypes.c_void_p
        self._fixes.XFixesGetCursorImage.restype = ctypes.POINTER(CursorImage)
        self._display = ctypes.c_void_p(self._x11.XOpenDisplay(display.encode()))
        if not self._display.value:
            raise RuntimeError(f"no display {display}")

    def name(self):
        """The name under which its theme has the picture, such as "dnd-copy"; empty for one without."""
        with self._image() as image:
            return (image.name or b"").decode()

    def picture(self):
        """Something that is equal for equal pictures; not every program's pictures have names."""
        with self._image() as image:
            return image.width, image.height, tuple(image.pixels[:image.width * image.height])

    @contextlib.contextmanager
    def _image(self):
        image = self._fixes.XFixesGetCursorImage(self._display)
        try:
            yield image.contents
        finally:
            self._x11.XFree(image)

    def close(self):
        self._x11.XCloseDisplay(self._display)
