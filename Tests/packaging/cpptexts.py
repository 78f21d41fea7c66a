"""The texts in C++ sources: each string literal, with the name of the call that it is an argument of."""

import dataclasses
import re

TOKEN = re.compile(r'''//[^\n]*|/\*.*?\*/                                   # comments
                       |\#[ ]*include[^\n]*
                       |R"(?P<mark>[^(\s]*)\((?P<raw>.*?)\)(?P=mark)"     # raw string
                       |"(?P<text>(?:[^"\\\n]|\\.)*)"
                       |'(?:[^'\\\n]|\\.)+'
                       |(?P<word>\w+)
                       |(?P<space>\s+)
                       |(?P<other>.)''', re.VERBOSE | re.DOTALL)


@dataclasses.dataclass(frozen=True)
class Literal:
    text: str
    call: str  # the nearest name before an open parenthesis, "" outside of all calls


def unescaped(text):
    return text.encode("latin-1", "backslashreplace").decode("unicode_escape") if "\\" in text else text


def literals(source):
    """Every literal of a source text; those that stand one after the other are one."""
    found, calls, last_word, joins = [], [], "", False
    for token in TOKEN.finditer(source):
        text = token["raw"] if token["raw"] is not None else token["text"]
        if text is not None:
            text = text if token["raw"] is not None else unescaped(text)
            if joins:
                text = found.pop().text + text
            found.append(Literal(text, next((call for call in reversed(calls) if call), "")))
            joins = True
        elif token["word"]:
            last_word, joins = token["word"], False
        elif token["other"]:
            joins = False
            if token["other"] == "(":
                calls.append(last_word)
            elif token["other"] == ")" and calls:
                calls.pop()
            last_word = ""
    return found
