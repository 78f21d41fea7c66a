"""The page that a guided tour leaves beside its pictures."""

import html

PAGE = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Quillbox: the guided tour</title>
<style>
:root {{ color-scheme: light dark; }}
body {{ max-width: 84rem; margin: 2.5rem auto; padding: 0 1.25rem; font: 1rem/1.5 system-ui, sans-serif; }}
h1 {{ margin: 0; line-height: 1.2; }}
h2 {{ margin: 0 0 .2rem; font-size: 1.15rem; }}
p {{ margin: .3rem 0; }}
ol {{ list-style: none; margin: 2rem 0; padding: 0; display: grid; gap: 2.5rem 3rem;
     grid-template-columns: repeat(auto-fill, minmax(min(100%, 30rem), 1fr)); }}
ol > li {{ padding-top: 1.25rem; border-top: 1px solid #8884; }}
li .number {{ color: #888; margin-right: .4rem; }}
ul {{ margin: .3rem 0; padding-left: 1.2rem; color: #888; font-size: .9rem; }}
img {{ display: block; max-width: 100%; margin-top: .8rem; border-radius: 6px; box-shadow: 0 2px 14px #0005; }}
.failed {{ border-left: .3rem solid #c33; padding-left: .8rem; }}
footer {{ color: #888; }}
</style>
</head>
<body>
<h1>Quillbox: the guided tour</h1>
<p>{summary}</p>
<ol>
{steps}
</ol>
<footer>{end}</footer>
</body>
</html>
"""

STEP = """<li id="{name}">
<h2><span class="number">{number}</span>{title}</h2>
<p>{text}</p>
{notes}{picture}</li>
"""


class Report:
    """Collects the steps of a tour and writes them as one page into the folder of the pictures."""

    def __init__(self, folder, look):
        self._folder = folder
        self._look = look
        self._steps = []

    def add(self, name, title, text, notes=(), picture=None):
        words = [f"<li>{html.escape(note)}</li>" for note in notes]
        self._steps.append(STEP.format(
            name=name, number=len(self._steps) + 1, title=html.escape(title), text=html.escape(text),
            notes=f"<ul>{''.join(words)}</ul>\n" if words else "", picture=self._image(picture, title)))

    def write(self, problem=None, picture=None):
        """Writes the page, with the problem at which the tour stopped if there was one."""
        end = "The tour is complete: every step was seen to work."
        if problem:
            end = f'<div class="failed"><p>The tour stopped: {html.escape(str(problem))}</p>' \
                  f"{self._image(picture, 'The screen at that moment')}</div>"
        summary = f"The real program beside a device on this computer, {self._look}: {len(self._steps)} steps."
        page = PAGE.format(summary=html.escape(summary), steps="".join(self._steps), end=end)
        path = self._folder / "index.html"
        path.write_text(page, encoding="utf-8")
        return path

    def _image(self, path, title):
        """The picture at its size on a desktop of this scale."""
        if path is None:
            return ""
        density = f' srcset="{path.name} {self._look.scale}x"' if self._look.scale > 1 else ""
        return f'<a href="{path.name}"><img src="{path.name}"{density} alt="{html.escape(title)}"></a>\n'
