#!/usr/bin/env python3
"""Runs stories over real disks and arrays: each in a guest of its own with the kernel of this Debian, its
MD driver and mdadm, and with the built programs.

usage: guests.py [--programs FOLDER] [--show] [STORY...]     all of tests/linuxmd/*.sh without a story

A guest is emulated: it needs no rights, no network, and cannot touch this machine's disks, since its own
are made of its memory. A story is a shell script. What it prints and its exit code come out of the guest by
a serial line; 125 stands for a guest that died (its console is shown), 124 for one that did not end. A
comment in the story may say otherwise: "# expect: 125" an exit code that is not 0, "# limit: 60" seconds
until 124, "# images: 3" how many disks outlast a boot, "# boots: 2" that the guest is started again with
them, in the other order, and "# after the first boot away: disk1" without that one.

The kernel and the guest's programs are kept in build/linuxmd, by their versions.
"""

import argparse
import concurrent.futures
import hashlib
import os
import pathlib
import re
import resource
import shutil
import subprocess
import sys
import tempfile
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
HERE = TREE / "tests/linuxmd"
CACHE = TREE / "build/linuxmd"
KERNEL = "linux-image-cloud-amd64"
MODULES = ("virtio_pci", "virtio_blk", "sd_mod", "scsi_debug", "md-mod", "raid0", "raid1", "raid10",
           "raid456")
PACKAGES = {"qemu-system-x86_64": "qemu-system-x86", "busybox": "busybox-static", "mdadm": "mdadm",
            "modprobe": "kmod", "cpio": "cpio", "sfdisk": "fdisk", "strip": "binutils"}
PROGRAMS = ("vexorctl", "hxraidsvc", "hxsimctl", "check_in", "read_events")
LIBRARIES = ("libvexorapi.so.1", "libhxraid.so", "linuxmd/libhxraid.so")
AT_ONCE = 2
LIMIT = 1200  # seconds, for a guest on a machine that does much else
DIED, TIMED_OUT = 125, 124

os.environ["PATH"] += ":/usr/sbin:/sbin"


class Impossible(Exception):
    """Something that the guests need is missing."""


def output_of(*command, **more):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False,
                          **more)
    if done.returncode != 0:
        raise Impossible(f"{' '.join(map(str, command))} ended with {done.returncode}: {done.stderr.strip()}")
    return done.stdout


def check_packages():
    missing = sorted({package for program, package in PACKAGES.items() if shutil.which(program) is None})
    if missing:
        raise Impossible(f"not installed: {' '.join(missing)}; scripts/bootstrap installs them")


# ---- Archives ----

def write_archive(folder, archive):
    """An archive as the kernel unpacks it; several can follow each other in one file."""
    names = output_of("find", ".", cwd=folder)
    with open(archive, "wb") as file:
        subprocess.run(["cpio", "--quiet", "-o", "-H", "newc", "-R", "0:0"], cwd=folder, check=True,
                       input=names.encode(), stdout=file)


def copy_with_libraries(file, folder, place, strip=False):
    """Copies a program or library to a place below the folder, and the system's libraries that it needs."""
    target = folder / place
    target.parent.mkdir(parents=True, exist_ok=True)
    if strip:
        output_of("strip", "-o", target, file)
    else:
        shutil.copy(file, target)
    listed = subprocess.run(["ldd", file], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                            check=False).stdout
    for library in re.findall(r"(?:^\s*|=> )(/\S+) \(0x", listed, re.M):
        if pathlib.Path(library).is_relative_to(TREE):
            continue
        copy = folder / library[1:]
        if not copy.exists():
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(library, copy)


# ---- The kernel ----

def kernel_package():
    """The package of the newest kernel in Debian's index."""
    def newest():
        listed = subprocess.run(["apt-cache", "depends", KERNEL], stdout=subprocess.PIPE,
                                stderr=subprocess.DEVNULL, text=True, check=False).stdout
        found = re.search(r"Depends: (linux-image-\S+)", listed)
        return found.group(1) if found else None
    package = newest()
    if package is None and os.geteuid() == 0:
        output_of("apt-get", "-q", "update")
        package = newest()
    return package


def kept_kernel():
    kept = sorted(CACHE.glob("linux-image-*"), key=lambda folder: folder.stat().st_mtime)
    return kept[-1] if kept else None


def kernel():
    """The folder of an unpacked kernel package."""
    package = kernel_package()
    if package is None:
        if kept_kernel() is None:
            raise Impossible(f"Debian's index has no {KERNEL}; apt-get update reads it")
        return kept_kernel()
    version = re.search(r"^Version: (\S+)", output_of("apt-cache", "show", "--no-all-versions", package),
                        re.M).group(1)
    unpacked = CACHE / f"{package}_{version.replace(':', '_')}"
    if unpacked.exists():
        return unpacked
    with tempfile.TemporaryDirectory(dir=CACHE) as name:
        print(f"guests: fetching {package} {version}", flush=True)
        output_of("apt-get", "-q", "-o", "APT::Sandbox::User=root", "download", package, cwd=name)
        [archive] = pathlib.Path(name).glob("*.deb")
        output_of("dpkg-deb", "-x", archive, f"{name}/tree")
        [release] = pathlib.Path(name, "tree/lib/modules").iterdir()
        output_of("depmod", "-b", f"{name}/tree", release.name)
        os.rename(f"{name}/tree", unpacked)
    return unpacked


# ---- What a guest is started from ----

def versions():
    return output_of("dpkg-query", "-W", "-f", "${Package} ${Version}\n", "busybox-static", "mdadm", "fdisk",
                     "kmod", "libc6")


def base_archive(unpacked):
    """The part that depends neither on the build nor on the story: kept by the versions in it."""
    parts = (unpacked.name, versions(), (HERE / "init").read_text(), pathlib.Path(__file__).read_text())
    archive = CACHE / f"base-{hashlib.sha256(chr(0).join(parts).encode()).hexdigest()[:16]}.cpio"
    if archive.exists():
        return archive
    with tempfile.TemporaryDirectory(dir=CACHE) as name:
        folder = pathlib.Path(name, "root")
        for place in ("bin", "sbin", "proc", "sys", "dev", "run", "tmp", "etc", "test", "var/log",
                      "opt/kestrel/raid/db"):
            (folder / place).mkdir(parents=True)
        copy_with_libraries(shutil.which("busybox"), folder, "bin/busybox")
        for applet in output_of(shutil.which("busybox"), "--list").split():
            if applet not in ("busybox", "watch"):
                (folder / "bin" / applet).symlink_to("busybox")
        for program in ("mdadm", "sfdisk"):
            copy_with_libraries(shutil.which(program), folder, f"sbin/{program}")
        [release] = (unpacked / "lib/modules").iterdir()
        for module in MODULES:
            shown = output_of("modprobe", "-d", unpacked, "-S", release.name, "--show-depends", module)
            for file in re.findall(r"^insmod (\S+)", shown, re.M):
                copy = folder / os.path.relpath(file, unpacked)
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(file, copy)
        for file in release.glob("modules.*"):
            if file.name in ("modules.order", "modules.builtin", "modules.builtin.modinfo"):
                shutil.copy(file, folder / "lib/modules" / release.name)
        output_of("depmod", "-b", folder, release.name)
        shutil.copy(HERE / "init", folder / "init")
        (folder / "init").chmod(0o755)
        (folder / "etc/machine-id").write_text("0123456789abcdef0123456789abcdef\n")
        (folder / "etc/passwd").write_text("root:x:0:0::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n")
        (folder / "etc/group").write_text("root:x:0:\nnogroup:x:65534:\n")
        write_archive(folder, f"{name}/base")
        os.rename(f"{name}/base", archive)
    return archive


def overlay_archive(programs, archive):
    """The built programs and libraries, stripped: with their debug information they take ten times as much."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for program in PROGRAMS:
            if program == "read_events" and not (programs / "bin" / program).exists():
                continue  # a build without tests, for a story that does not need it
            copy_with_libraries(programs / "bin" / program, folder, f"opt/vexor/bin/{program}", strip=True)
        for library in LIBRARIES:
            copy_with_libraries(programs / "lib" / library, folder, f"opt/vexor/lib/{library}", strip=True)
        write_archive(folder, archive)


# ---- Guests ----

class Story:
    def __init__(self, path):
        self.path = path
        self.name = path.stem
        text = path.read_text()
        def number(word, otherwise):
            found = re.search(rf"^# {word}: (\d+)$", text, re.M)
            return int(found.group(1)) if found else otherwise
        self.expected = number("expect", 0)
        self.limit = number("limit", LIMIT)
        self.boots = number("boots", 1)
        self.images = number("images", 0)
        self.away = re.findall(r"^# after the first boot away: (\S+)$", text, re.M)


class Machine:
    """What all guests are started from."""

    def __init__(self, programs, folder):
        CACHE.mkdir(parents=True, exist_ok=True)
        check_packages()
        unpacked = kernel()
        [self.kernel] = (unpacked / "boot").glob("vmlinuz-*")
        self.folder = folder
        self.base = base_archive(unpacked)
        self.overlay = folder / "overlay"
        overlay_archive(programs, self.overlay)

    def boot(self, story, folder, number, show):
        """Returns the exit code and what the story has printed."""
        with tempfile.TemporaryDirectory(dir=folder) as name:
            test = pathlib.Path(name, "test")
            test.mkdir()
            (test / "run").write_text((HERE / "common").read_text() + story.path.read_text())
            (test / "boot").write_text(f"{number}\n")
            write_archive(name, folder / "story")
        with open(folder / "initrd", "wb") as initrd:
            for part in (self.base, self.overlay, folder / "story"):
                initrd.write(part.read_bytes())
        console = folder / "console"
        disks = []
        for image in sorted(folder.glob("disk*"), reverse=number > 1):
            if number > 1 and image.name in story.away:
                continue
            disks += ["-drive", f"if=none,format=raw,id={image.name},file={image}",
                      "-device", f"virtio-blk-pci,drive={image.name},serial={image.name}"]
        guest = subprocess.Popen(
            ["timeout", str(story.limit), "qemu-system-x86_64", "-M", "q35", "-accel", "tcg,thread=multi",
             "-cpu", "max", "-smp", "1", "-m", "640", "-nodefaults", "-no-reboot", "-display", "none",
             "-kernel", self.kernel, "-initrd", folder / "initrd", "-append",
             "console=ttyS0 panic=-1 quiet no_timer_check mitigations=off", *disks,
             "-serial", f"file:{console}", "-serial", "file:/dev/stdout"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        lines = []
        code = DIED
        with guest:
            for line in guest.stdout:
                text = line.decode(errors="replace").rstrip("\r\n")
                ended = re.fullmatch(r"guest-exit: (\d+)", text)
                if ended:
                    code = int(ended.group(1))
                    continue
                lines.append(text)
                if show:
                    print(text, flush=True)
        if guest.returncode == TIMED_OUT:
            code = TIMED_OUT
        if code in (DIED, TIMED_OUT):
            lines += ["--- the guest's console", *console.read_text(errors="replace").splitlines()[-60:]]
        return code, lines

    def tell(self, story, show=False):
        """Returns whether the story ended as it says, what it printed, and the seconds that it took."""
        began = time.monotonic()
        lines = []
        with tempfile.TemporaryDirectory(dir=self.folder) as name:
            folder = pathlib.Path(name)
            for number in range(story.images):
                with open(folder / f"disk{number}", "wb") as image:
                    image.truncate(40 << 20)
            for number in range(1, story.boots + 1):
                code, printed = self.boot(story, folder, number, show)
                lines += printed
                if code != story.expected:
                    lines.append(f"--- exit code {code}, expected {story.expected}")
                    break
        return code == story.expected, lines, time.monotonic() - began


def main():
    parser = argparse.ArgumentParser(description="Stories over real disks and arrays, in emulated guests.")
    parser.add_argument("--programs", type=pathlib.Path, default=TREE / "build/release",
                        help="the build folder whose bin and lib go into the guests")
    parser.add_argument("--show", action="store_true",
                        help="print what a story prints while it does; one guest at a time")
    parser.add_argument("stories", nargs="*", type=pathlib.Path, metavar="STORY")
    words = parser.parse_args()
    stories = [Story(path) for path in words.stories or sorted(HERE.glob("*.sh"))]
    failed = []
    with tempfile.TemporaryDirectory(prefix="guests-") as name:
        machine = Machine(words.programs.resolve(), pathlib.Path(name))
        with concurrent.futures.ThreadPoolExecutor(1 if words.show else AT_ONCE) as pool:
            told = {pool.submit(machine.tell, story, words.show): story for story in stories}
            for future in concurrent.futures.as_completed(told):
                story = told[future]
                right, lines, seconds = future.result()
                print(f"{story.name}: {'ok' if right else 'FAILED'} ({seconds:.0f} s)", flush=True)
                if not right:
                    failed.append(story)
                    print("\n".join(f"    {line}" for line in lines), flush=True)
    if failed:
        again = " ".join(str(story.path.relative_to(TREE) if story.path.is_absolute() else story.path)
                         for story in failed)
        print(f"guests: {len(failed)} of {len(stories)} stories failed; again with: "
              f"tests/linuxmd/guests.py --show {again}")
        return 1
    used = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    print(f"guests: {len(stories)} stories ended as they should, in {used:.0f} s of a processor")
    return 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except Impossible as error:
        sys.exit(f"guests: {error}")
