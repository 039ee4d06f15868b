#!/usr/bin/env python3
"""Runs the commands of README.md, CONTRIBUTING.md and docs/ (the lines of their ```sh blocks), in a session of its own with
Ambertide, as far as they can be run repeatedly. Where a command needs the reader's own machine or half an hour, only
checks that its program exists. A command that this cannot check is an error, and so is a link to a missing file.
"""
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "tests/desktop"))
from desktop import Desktop  # noqa: E402


def documents():
    return [ROOT / "README.md", ROOT / "CONTRIBUTING.md", *sorted(ROOT.glob("docs/*.md"))]


def commands(document):
    for block in re.findall(r"^ *```sh\n(.*?)^ *```$", document.read_text(encoding="utf-8"), re.MULTILINE | re.DOTALL):
        for line in block.replace("\\\n", " ").splitlines():
            command = " ".join(line.split(" # ")[0].split())
            if command:
                yield command


def run(command, expected=0):
    result = subprocess.run(["bash", "-c", command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode != expected:
        raise AssertionError(f"status {result.returncode}\n{result.stdout}")
    return result.stdout


def run_for_a_second(command):
    run(f"timeout 1 {command}", expected=124)


def simulate_installation(command):
    run(command.replace("sudo apt", "apt-get --simulate"))


def names_the_package(command):
    name = command.split()[-1]
    assert f"PACKAGE_NAME {name})" in (ROOT / "packaging/debian/CMakeLists.txt").read_text(), f"no package {name}"


def is_there(command):
    """The program is, and so are the project's options that are given to it."""
    program = command.split()[0]
    assert not program.startswith(("scripts/", "tests/", ".ci/")) or os.access(program, os.X_OK), f"no {program}"
    for option in re.findall(r"-D(AMBERTIDE_\w+)", command):
        assert option in (ROOT / "CMakeLists.txt").read_text(), f"no option {option}"


def finds_tests(command):
    run(f"ctest --test-dir build/dev -N {command.partition(' ')[2]} | grep -q 'Test *#'")


def sign(command):
    """Runs it in the home folder, with a file made for each name that is to be signed."""
    words = command.replace(" [DAYS]", "").split()
    for name in words[3:]:
        file = pathlib.Path.home() / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text("content\n")
    run(f"cd ~ && {ROOT}/{' '.join(words)}")


CHECKS = [
    (r"(ambertide|busctl|gdbus introspect|rm -rf ~/\.config) ?.*", run),
    (r"gdbus monitor .*", run_for_a_second),
    (r"sudo apt install .*", simulate_installation),
    (r"sudo apt purge .*", names_the_package),
    (r"scripts/test -R .*", finds_tests),
    (r"scripts/sign .* (KEY\.pem|~/\S*\.pem)( .*)?", sign),
    (r"(cmake --build build/dev|build/dev/src)\S* .*|.*cmake .*build/distribution.*", run),
    (r"(scripts|tests|\.ci)/.*|cmake .*|build/fuzz/.*", is_there),
]


def check(command):
    for pattern, how in CHECKS:
        if re.fullmatch(pattern, command):
            return how(command)
    raise AssertionError("there is no way to check this command")


def check_links(document):
    for target in re.findall(r"\]\(([^)#:]+)\)|(?:src|srcset)=\"([^\":]+)\"", document.read_text(encoding="utf-8")):
        path = document.parent / "".join(target)
        assert path.exists(), f"{document.name} leads to {path}, which does not exist"


def main():
    os.chdir(ROOT)
    with Desktop(ROOT / "build/dev") as desktop:
        tools = desktop.home / "tools"
        tools.mkdir()
        (tools / "ambertide").symlink_to(desktop.bundle / "Contents/MacOS/AmbertideCLI")
        os.environ["PATH"] = f"{tools}:{os.environ['PATH']}"
        desktop.start_application()
        for document in documents():
            check_links(document)
            for command in commands(document):
                try:
                    check(command)
                except AssertionError as failure:
                    sys.exit(f"{document.relative_to(ROOT)}: {command}\n{failure}")
                print(f"{document.relative_to(ROOT)}: {command}")


main()
