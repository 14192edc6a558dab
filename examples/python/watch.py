#!/usr/bin/env python3
"""Lists the disks of every adapter, then prints what happens: watch.py [SECONDS]

With SECONDS it looks for new events every so often, until it is interrupted; without, it ends behind
the newest.
"""

from __future__ import annotations

import sys

import vexorapi


def harmless(text: str) -> str:
    """Texts come from disks and administrators: a terminal gets no control characters of theirs."""
    return "".join(character if character.isprintable() else "?" for character in text)


def list_disks(client: vexorapi.Client) -> None:
    for adapter in range(client.HX_Adapter_GetCount().RetVal):
        for disk in client.every(client.HX_PD_GetHDInfo, AdapterID=adapter):
            print(f"a{adapter}/p{disk.Link.Self.DevID}: {harmless(disk.Model)}, "
                  f"{disk.Size * 512 / 2**30:.1f} GiB")


def print_events(client: vexorapi.Client, seconds: float | None) -> None:
    for number, event in client.events(follow=seconds):
        print(f"{number}: {harmless(event.Event.strip())}", flush=True)


def main() -> int:
    try:
        with vexorapi.Client() as client:
            list_disks(client)
            print_events(client, float(sys.argv[1]) if len(sys.argv) > 1 else None)
    except vexorapi.Error as error:
        print(f"watch.py: {harmless(str(error))}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        pass
    return 0


if __name__ == "__main__":
    sys.exit(main())
