"""How a desktop looks to a person: light or dark, its scale, its language.

The program asks the desktop for all of this. Here it finds the settings of a KDE desktop, which the toolkit
reads without further libraries.
"""

import dataclasses
import subprocess

LIGHT = {"Window": "#eff0f1", "View": "#ffffff", "Button": "#fcfcfc", "Text": "#232629", "Alternate": "#f3f5f7",
         "Selection": "#3874b8", "Tooltip": "#f7f7f7", "Inactive": "#7f8c8d"}
DARK = {"Window": "#2a2e32", "View": "#1d2023", "Button": "#363b40", "Text": "#eceff1", "Alternate": "#24282b",
        "Selection": "#3874b8", "Tooltip": "#363b40", "Inactive": "#a1a9b1"}
LOCALES = {"en": "C.UTF-8", "de": "de_DE.UTF-8", "fr": "fr_FR.UTF-8"}
LANGUAGES = {"en": "English", "de": "German", "fr": "French"}

SETTINGS = """[General]
ColorScheme=Quillbox
font=DejaVu Sans,10,-1,5,50,0,0,0,0,0
fixed=DejaVu Sans Mono,10,-1,5,50,0,0,0,0,0

[Icons]
Theme=hicolor
"""


# Plain title bars.
WINDOW_THEME = """border.width: 1
border.color: {edge}
padding.width: {padding}
padding.height: {padding}
window.handle.width: 0
window.client.padding.width: 0
window.*.title.separator.color: {edge}
window.*.title.bg: flat solid
window.*.title.bg.color: {window}
window.*.label.bg: parentrelative
window.active.label.text.color: {text}
window.inactive.label.text.color: {inactive}
window.*.button.*.bg: parentrelative
window.active.button.*.image.color: {text}
window.inactive.button.*.image.color: {inactive}
window.label.text.justify: center
"""


@dataclasses.dataclass
class Look:
    dark: bool = False
    scale: int = 1
    language: str = "en"

    def put_on(self, desktop):
        """Gives this look to every program that is started on the desktop from now on."""
        (desktop.root / "config/kdeglobals").write_text(SETTINGS + colours(DARK if self.dark else LIGHT))
        (desktop.root / "config/gtk-3.0").mkdir(exist_ok=True)
        (desktop.root / "config/gtk-3.0/settings.ini").write_text(
            f"[Settings]\ngtk-application-prefer-dark-theme={int(self.dark)}\n")
        self._frame_windows(desktop)
        desktop.environment |= {
            "LANG": LOCALES[self.language],
            "XDG_CURRENT_DESKTOP": "KDE",
            "KDE_SESSION_VERSION": "5",
            "QT_SCALE_FACTOR": str(self.scale),
            "GDK_SCALE": str(self.scale),
        }

    def _frame_windows(self, desktop):
        scheme = DARK if self.dark else LIGHT
        theme = desktop.root / "data/themes/Quillbox/openbox-3"
        theme.mkdir(parents=True)
        (theme / "themerc").write_text(WINDOW_THEME.format(
            edge="#111111" if self.dark else "#b0b4b8", padding=5 * self.scale, window=scheme["Window"],
            text=scheme["Text"], inactive=scheme["Inactive"]))
        settings = desktop.root / "config/openbox/rc.xml"
        font = "".join(f'<font place="{place}"><name>DejaVu Sans</name><size>{9 * self.scale}</size></font>'
                       for place in ("ActiveWindow", "InactiveWindow"))
        settings.write_text(settings.read_text().replace("<name>Clearlooks</name><titleLayout>CL</titleLayout>",
                                                         f"<name>Quillbox</name><titleLayout>LC</titleLayout>{font}"))
        subprocess.run(["openbox", "--reconfigure"], env=desktop.environment, check=True, timeout=20)

    def __str__(self):
        colour = "dark" if self.dark else "light"
        return f"on a {colour} desktop at {100 * self.scale} %, in {LANGUAGES[self.language]}"


def colours(scheme):
    groups = (group(name, scheme, scheme[name], scheme["Text"]) for name in ("Window", "View", "Button", "Tooltip"))
    return "".join(groups) + group("Selection", scheme, scheme["Selection"], "#ffffff")


def group(name, scheme, background, text):
    return (f"\n[Colors:{name}]\nBackgroundNormal={rgb(background)}\nBackgroundAlternate={rgb(scheme['Alternate'])}\n"
            f"ForegroundNormal={rgb(text)}\nForegroundInactive={rgb(scheme['Inactive'])}\n"
            f"ForegroundLink={rgb('#3daee9')}\nForegroundVisited={rgb('#9b59b6')}\n")


def rgb(colour):
    """The settings' way to write a colour."""
    return ",".join(str(int(colour[place:place + 2], 16)) for place in (1, 3, 5))


def contrast(one, other):
    """The contrast of two colours, triples up to 255, as in the W3C's guidelines for accessible content."""
    darker, brighter = sorted(map(luminance, (one, other)))
    return (brighter + 0.05) / (darker + 0.05)


def luminance(colour):
    red, green, blue = (part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4
                        for part in (value / 255 for value in colour))
    return 0.2126 * red + 0.7152 * green + 0.0722 * blue
