#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""check-translations.py LUPDATE SOURCE_DIR: every translations/vesko_*.ts is
complete for the code as it is. A copy of each is refreshed from src/ and
app/ as scripts/update-translations.sh does, keeping what the code no longer
has; then no entry may be unfinished (new in the code, or never translated),
vanished or obsolete (gone from the code), empty, missing a place marker of
its source (%1, %n), or short of the plural forms its language has."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

# The plural forms of each language, as Qt counts them.
PLURAL_FORMS = {"de": 2, "fr": 2}
MARKER = re.compile(r"%L?(\d+|n)")


def markers(text):
    return sorted(set(MARKER.findall(text or "")))


def problems(ts_path):
    root = ET.parse(ts_path).getroot()
    language = (root.get("language") or "").split("_")[0]
    if language not in PLURAL_FORMS:
        yield f"unknown language “{root.get('language')}”: add its plural forms"
        return
    for context in root.iter("context"):
        name = context.findtext("name")
        for message in context.iter("message"):
            source = message.findtext("source")
            where = f"{name}: {source!r}"
            translation = message.find("translation")
            kind = translation.get("type")
            if kind in ("unfinished", "vanished", "obsolete"):
                yield f"{where} is {kind}"
                continue
            if message.get("numerus") == "yes":
                forms = [form.text or "" for form in translation.iter("numerusform")]
                if len(forms) != PLURAL_FORMS[language] or not all(f.strip() for f in forms):
                    yield f"{where} needs {PLURAL_FORMS[language]} plural forms, has {forms!r}"
                    continue
                # The count may be left out of a singular ("one second").
                texts = [forms[-1]]
            else:
                texts = [translation.text or ""]
                if not texts[0].strip():
                    yield f"{where} is empty"
                    continue
            for text in texts:
                if markers(text) != markers(source):
                    yield f"{where} has the markers {markers(text)}, not {markers(source)}"
                if source.count("&") - source.count("&&") != text.count("&") - text.count("&&"):
                    yield f"{where} loses or adds a keyboard accelerator"


def main():
    lupdate, source_dir = sys.argv[1], pathlib.Path(sys.argv[2])
    ts_files = sorted((source_dir / "translations").glob("vesko_*.ts"))
    if not ts_files:
        print("no translations/vesko_*.ts", file=sys.stderr)
        return 1
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        copies = []
        for ts in ts_files:
            copy = pathlib.Path(folder) / ts.name
            shutil.copy(ts, copy)
            copies.append(str(copy))
        subprocess.run([lupdate, "-silent", "-locations", "none", "-extensions", "cpp,h",
                        "src", "app", "-ts", *copies], cwd=source_dir, check=True)
        for ts, copy in zip(ts_files, copies):
            failures += [f"{ts.name}: {problem}" for problem in problems(copy)]
    for failure in failures:
        print(failure, file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
