"""render_manual.py MARKDOWN STYLESHEET HTML

Renders the manual into one page with its style inside, and copies the pictures that it shows into
images/ beside the page. A section that is nothing but a link to another of its files becomes the
sections of that file.
"""

import pathlib
import re
import shutil
import sys

import markdown
from markdown.extensions.toc import slugify_unicode

PAGE = """<!DOCTYPE html>
<html lang="ja">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<style>
{style}</style>
</head>
<body>
<nav>
{contents}
</nav>
<main>
{text}
</main>
</body>
</html>
"""

PICTURE = re.compile(r'(<img [^>]*src=")([^"]+)"')
# Kana, ideographs and full-width signs, which stand together without blanks.
WIDE = r"[\u3000-\u30ff\u3400-\u9fff\uff00-\uffef]"
BREAK_IN_TEXT = re.compile(rf"(?<={WIDE})\n(?=(?:<(?:a|code|strong)\b[^>]*>)?{WIDE})")
PREFORMATTED = re.compile(r"(<pre>.*?</pre>)", re.DOTALL)


def joined(html):
    """A browser would show a blank where a line of Japanese ends in the source."""
    parts = PREFORMATTED.split(html)
    parts[::2] = [BREAK_IN_TEXT.sub("", part) for part in parts[::2]]
    return "".join(parts)


PART = re.compile(r"^## .*\n\n\[[^\]]*\]\((manual-[a-z]+\.ja\.md)\)\n", re.MULTILINE)
LINK_TO_FILE = re.compile(r"\]\(manual[a-z.-]*\.md(#[^)]*)?\)")


def whole_text(source):
    """The manual with its parts in their places; links between the files lead into the one page."""

    def part(match):
        text = (source.parent / match[1]).read_text(encoding="utf-8")
        return text[text.index("## "):]

    text = PART.sub(part, source.read_text(encoding="utf-8"))
    return LINK_TO_FILE.sub(lambda match: f"]({match[1] or '#'})", text)


def main(source, stylesheet, target):
    source, target = pathlib.Path(source), pathlib.Path(target)
    images = target.parent / "images"
    images.mkdir(parents=True, exist_ok=True)

    def taken_along(match):
        picture = source.parent / match[2]
        if not picture.is_file():
            sys.exit(f"error: {picture} is missing: run scripts/make_manual_images.sh")
        shutil.copyfile(picture, images / picture.name)
        return f'{match[1]}images/{picture.name}"'

    renderer = markdown.Markdown(
        extensions=["fenced_code", "tables", "toc"], output_format="html",
        extension_configs={"toc": {"slugify": slugify_unicode, "toc_depth": "2-3"}})
    text = joined(renderer.convert(whole_text(source)))
    page = PAGE.format(
        title=re.search("<h1[^>]*>(.*?)</h1>", text)[1],
        style=pathlib.Path(stylesheet).read_text(encoding="utf-8"),
        contents=renderer.toc.strip(), text=PICTURE.sub(taken_along, text))
    target.write_text(page, encoding="utf-8", newline="\n")


main(*sys.argv[1:])
