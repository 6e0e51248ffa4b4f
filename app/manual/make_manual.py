#!/usr/bin/env python3
"""make_manual.py OUTPUT_FOLDER: makes the manual's pages, OUTPUT_FOLDER/LANGUAGE.html, of the
Markdown beside this file.

A page is one file with its pictures inside, so that browsers which see no other file of ours show
it whole; nothing in it comes from the network. {Text of the window} stands for that text in the
page's language, as the window's translations have it. The pages have to be alike: the same
headings, pictures, texts of the window and commands, section by section, or else none is made.
"""

import base64
import re
import sys
from collections import Counter
from itertools import zip_longest
from pathlib import Path
from xml.etree import ElementTree

import markdown

HERE = Path(__file__).resolve().parent
TRANSLATIONS = HERE.parent / "window/translations"
PICTURES = HERE.parent.parent / "docs/images"
LANGUAGES = {"en": "English", "de": "Deutsch", "es": "Español", "fr": "Français", "ja": "日本語"}

PAGE = """<!DOCTYPE html>
<html lang="{language}">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta name="color-scheme" content="light dark">
<title>{title}</title>
<style>
{style}</style>
</head>
<body>
<p class="languages">{links}</p>
{body}
</body>
</html>
"""


def without_mnemonic(text):
    return re.sub(r"\(&\w\)|&(?=\w)", "", text)


def texts_of_window(language):
    """The window's texts in the language, by the English ones; both without their mnemonics."""
    tree = ElementTree.parse(TRANSLATIONS / f"parcelo_{'de' if language == 'en' else language}.ts")
    texts = {}
    for message in tree.iter("message"):
        source = without_mnemonic(message.findtext("source"))
        translation = without_mnemonic(message.findtext("translation"))
        texts[source] = source if language == "en" else translation
    return texts


def filled(text, language):
    texts = texts_of_window(language)
    return re.sub(r"\{([^{}#]+)\}", lambda found: f"**{texts[found[1]]}**", text)


def with_pictures(body, language):
    def inside(found):
        own = PICTURES / language / found[1]
        picture = (own if own.exists() else PICTURES / found[1]).read_bytes()
        return f'src="data:image/png;base64,{base64.b64encode(picture).decode()}"'
    return re.sub(r'src="([^":]+\.png)"', inside, body)


def page(text, language):
    body = markdown.markdown(filled(text, language), output_format="html",
        extensions=["attr_list", "tables", "toc", "sane_lists"],
        extension_configs={"toc": {"toc_depth": "2-2"}})
    links = " · ".join(
        f'<a href="{other}.html" hreflang="{other}" lang="{other}">{name}</a>'
        for other, name in LANGUAGES.items() if other != language)
    return PAGE.format(language=language, title=re.search(r"<h1[^>]*>(.*?)</h1>", body)[1],
        style=(HERE / "style.css").read_text(), links=links, body=with_pictures(body, language))


def outline(text):
    """What every page has in common: of each section its heading, pictures, texts of the window,
    commands, rows and items."""
    sections = re.split(r"^## .*(?=\{#)", re.sub(r"<kbd>.*?</kbd>", "", text), flags=re.MULTILINE)
    return [Counter(re.findall(r"\{[^{}]+\}|\]\([^)]*\)|`[^`]+`|^\||^- |^    \S+", section,
        re.MULTILINE)) for section in sections]


def main(folder):
    sources = {each: (HERE / f"{each}.md").read_text(encoding="utf-8") for each in LANGUAGES}
    for language, text in sources.items():
        for own, english in zip_longest(
                outline(text), outline(sources["en"]), fillvalue=Counter()):
            if own != english:
                sys.exit(f"in one section, {language}.md alone has {list(own - english)}, en.md alone "
                    f"{list(english - own)}")
    folder.mkdir(parents=True, exist_ok=True)
    for language, text in sources.items():
        (folder / f"{language}.html").write_text(page(text, language), encoding="utf-8")


if __name__ == "__main__":
    main(Path(sys.argv[1]))
