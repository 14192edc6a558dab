"""Random commands, and what the controller answers to them: valid ones, nearly valid ones, hostile ones.

Everything follows from the random generator that it is given, so that a seed repeats a run.
"""

import struct

from model_functions import FUNCTIONS, LISTS, MOST_DECLARATIONS, PLAIN
from model_records import layout

NUMBERS = (0, 1, 2, 3, 7, 15, 16, 64, 127, 128, 240, 254, 255, 256, 511, 512, 32767, 32768, 65534,
           65535, 65536, 2147483647, 4294967294, 4294967295, 4294967296, 18446744073709551615,
           18446744073709551616)

NAME_PARTS = (b"vd", b"a<b", b"&", b"'\"", b"\xc3\xa4", b" ", b"  x", b"\xe2\x82\xac", b"Archive",
              b"]]>", b"0123456789abcdef")

EVENT_CLASSES = 16


def xml_text(text):
    return text.replace(b"&", b"&amp;").replace(b"<", b"&lt;").replace(b"]]>", b"]]&gt;")


class Commands:
    """Makes commands and answers."""

    def __init__(self, rng, users):
        self.rng = rng
        self.users = users
        self.names = sorted(FUNCTIONS)
        # Lists are where most can go wrong; the rest gets its share all the same.
        self.weighted = self.names + sorted(LISTS) * 2 + [
            "VX_HX_EVT_GetEvents", "HX_LD_QuickCreate", "HX_Adapter_GetInfo", "HX_PD_GetRCT"] * 2

    # ---- Commands -----------------------------------------------------------------------------

    def command(self):
        """A command, and the name of the function that it may reach."""
        rng = self.rng
        name = rng.choice(self.weighted)
        text = self.element(name)
        dice = rng.random()
        if b"filepath" in text:
            pass  # a damaged path might name a file outside the run's folder
        elif dice < 0.10:
            text = self.damaged(text)
        elif dice < 0.18:
            text = self.hostile(name, text)
        return text.split(b"\0", 1)[0], name

    def element(self, name):
        rng = self.rng
        children = []
        names = list(FUNCTIONS[name].kinds)
        for child in names:
            if rng.random() < 0.85:
                children.append(self.child(child, self.value(name, child)))
        while rng.random() < 0.1:
            child = rng.choice(names) if names else "AdapterID"
            children.append(self.child(child, self.value(name, child) if names else b"1"))
        if rng.random() < 0.1:
            children.append(self.child(rng.choice(("Unknown", "adapterid", name, "RetVal")), b"7"))
        if rng.random() < 0.3:
            rng.shuffle(children)
        gap = rng.choice((b"", b"\n  ", b"\r\n", b" "))
        body = gap.join([b"", *children, b""])
        encoded = name.encode()
        attributes = rng.choice((b' type="function"',) * 12 + (
            b" type='function'", b' a="1" type="function" b="2"', b' type = "function"'))
        text = b"<" + encoded + attributes + b">" + body + b"</" + encoded + b">"
        if rng.random() < 0.05:
            text = b'<?xml version="1.0"?>\n' + text + b"\n"
        return text

    def child(self, name, value):
        rng = self.rng
        dice = rng.random()
        encoded = name.encode()
        attributes = b"" if rng.random() < 0.7 else rng.choice((
            b' type="U8"', b' type="function"', b' width="3"'))
        if dice < 0.03:
            return b"<" + encoded + attributes + b"/>"
        if dice < 0.06 and b"]]>" not in value:
            value = b"<![CDATA[" + value + b"]]>"
        elif dice < 0.09:
            value = b"".join(b"&#%d;" % byte if byte < 128 else bytes([byte])
                             for byte in value if byte >= 32)
            value = value if self.is_text(value) else b"&#49;"
        elif dice < 0.11:
            half = len(value) // 2
            while half and value[half:half + 1] >= b"\x80":
                half -= 1
            value = xml_text(value[:half]) + rng.choice((
                b"<!-- 9 -->", b"<?pi 8?>", b"<x>5</x>", b"<x/>", b"\r\n")) + xml_text(value[half:])
        else:
            value = xml_text(value)
        whole = b"<" + encoded + attributes + b">" + value + b"</" + encoded + b">"
        for _ in range(rng.choice((0,) * 30 + (1, 1, 2, 2, 3, 4))):
            whole = b"<g>" + whole + b"</g>"
        return whole

    @staticmethod
    def is_text(value):
        try:
            value.decode()
        except UnicodeDecodeError:
            return False
        return True

    def value(self, function, child):
        rng = self.rng
        kind, size = FUNCTIONS[function].kinds[child]
        if child == "AdapterID":
            return b"%d" % rng.choice((0, 0, 0, 1, 2, 3, 255, 255, rng.randrange(300)))
        if child == "numRequested":
            return b"%d" % rng.choice((1, 2, 5, 32, 32, 128, 300, 600, 0, 32767, 32768, 65535))
        if child in ("nextStartingIndex", "numReturned"):
            return b"%d" % rng.choice((0, 0, 0, 0, 0, 0, 1, 65534, 65535, 65536))
        if child in ("n", "s", "e") and rng.random() < 0.8:
            return b"%d" % rng.choice((0, 1, 2, 5, 20, 100, 150, 151, 2000, 2001, 4294967295,
                                       rng.randrange(3000)))
        if child == "Actions" and function == "HX_Flash_Option":
            return rng.choice((b"15", b"240", b"240", b"0", b"16"))
        if child == "filepath":
            return self.path()
        if child == "lpszUsername":
            return rng.choice(self.users + [b"nobody", b"x" * 127, b"x" * 128, b"r" * 2100])
        if child == "lpszPassword":
            return rng.choice((b"secret", b"secret", b"Secret", b"", b"s" * 127, b"s" * 128))
        if kind == "number":
            return self.number()
        if kind == "numbers":
            count = rng.choice((0, 1, 2, 3, size - 1, size, size + 1, size + 20))
            blank = rng.choice((b" ", b",", b"\n", b" - ", b"x"))
            return blank.join(self.number() for _ in range(count))
        text = b"".join(rng.choice(NAME_PARTS) for _ in range(rng.randrange(5)))
        dice = rng.random()
        if dice < 0.1:
            text = b"n" * rng.choice((size - 2, size - 1, size, size + 1, 2046, 2047, 2048, 2049))
        return text

    def number(self):
        rng = self.rng
        dice = rng.random()
        if dice < 0.5:
            return b"%d" % rng.randrange(40)
        if dice < 0.75:
            return b"%d" % rng.choice(NUMBERS)
        if dice < 0.85:
            return b"%d" % rng.getrandbits(rng.choice((8, 16, 32, 40, 64, 70)))
        return rng.choice((b"-5", b"0x1F", b"1 2 3", b" 7 ", b"+9", b"none", b"007", b"1.5",
                           b"\xd9\xa3", b"12,13", b"4294967295a1", b"0" * 30 + b"4"))

    def path(self):
        rng = self.rng
        names = ["image%d" % size for size in IMAGE_SIZES] + ["bios%d" % i for i in range(4)]
        names += ["out%d" % i for i in range(3)] * 4 + ["missing/file", "", "f" * 300]
        return rng.choice(names).encode()

    def damaged(self, text):
        """A few bytes differ."""
        rng = self.rng
        damaged = bytearray(text)
        for _ in range(rng.choice((1, 1, 1, 2, 5))):
            at = rng.randrange(len(damaged) + 1)
            what = rng.randrange(5)
            if what == 0:
                del damaged[at:at + 1]
            elif what == 1:
                damaged.insert(at, rng.randrange(1, 256))
            elif what == 2 and at < len(damaged):
                damaged[at] = rng.randrange(1, 256)
            elif what == 3:
                del damaged[at:]
            else:
                end = min(len(damaged), at + rng.randrange(30))
                damaged[at:at] = damaged[at:end]
        return bytes(damaged)

    def hostile(self, name, text):
        """Made to hurt: deep, long, many, or none of ours."""
        rng = self.rng
        what = rng.randrange(14)
        encoded = name.encode()
        if what == 0:
            return rng.randbytes(rng.randrange(200))
        if what == 1:
            depth = rng.choice((1, 2, 3, 4, 5, 6, 7, 100, 100, 3000))
            inner = self.child("AdapterID", b"9")
            return (b'<%s type="function">' % encoded + b"<d>" * depth + inner + b"</d>" * depth +
                    b"</%s>" % encoded)
        if what == 2:
            digits = b" " * rng.choice((2045, 2046, 2047, 2048, 5000)) + b"12"
            return b'<%s type="function"><AdapterID>%s</AdapterID></%s>' % (encoded, digits, encoded)
        if what == 3:
            root = rng.choice((b"HX_PD_HDMPCheck", b"HX_CreateOrModify_DG", b"HX_EVT_GetEvent",
                               encoded.lower(), encoded + b"2", b"F" * 5000))
            return b'<%s type="function"><AdapterID>1</AdapterID></%s>' % (root, root)
        if what == 4:
            kind = rng.choice((b"", b' type="Function"', b' type="function "', b' Type="function"',
                               b' type=""', b' type="function" type="function"'))
            return text.replace(b' type="function"', kind)
        if what in (5, 6):
            count = rng.choice((1, 3, MOST_DECLARATIONS - 1, MOST_DECLARATIONS,
                                MOST_DECLARATIONS + 1, 400))
            form = rng.choice((b'<!ENTITY e%d "1">', b"<!ELEMENT e%d (a|b)*>",
                               b"<!ATTLIST e%d a CDATA #IMPLIED>",
                               b'<!NOTATION e%d SYSTEM "x">'))
            items = b"".join(form % number for number in range(count))
            return b"<!DOCTYPE %s [" % encoded + items + b"]>" + text
        if what == 7:
            entities = b'<!ENTITY a "7"><!ENTITY b "&a;&a;&a;">' + rng.choice((
                b"", b'<!ENTITY c SYSTEM "file:///etc/passwd">', b"<!ENTITY % p '1'>%p;"))
            inner = rng.choice((b"&a;", b"&b;", b"&c;", b"&undefined;", b"1&a;2"))
            return (b"<!DOCTYPE %s [" % encoded + entities + b']><%s type="function"><AdapterID>'
                    % encoded + inner + b"</AdapterID></%s>" % encoded)
        if what == 8:
            encoding = rng.choice((b"UTF-8", b"ISO-8859-1", b"US-ASCII", b"UTF-16", b"windows-1252",
                                   b"none", b"utf-8"))
            return b'<?xml version="1.0" encoding="%s"?>' % encoding + text
        if what == 9:
            return (b'<!DOCTYPE r [<!ATTLIST %s type CDATA "function">]>' % encoded +
                    text.replace(b' type="function"', b""))
        if what == 10:
            names = b"".join(b"<a.b.c/>" for _ in range(rng.choice((3, 3, 3, 2000))))
            return text.replace(b"</" + encoded + b">", names + b"</" + encoded + b">")
        if what == 11:
            many = self.child("AdapterID", b"3") * rng.choice((100, 100, 100, 3000))
            return text.replace(b"</" + encoded + b">", many + b"</" + encoded + b">")
        if what == 12:
            return rng.choice((b"", b" ", b"<", b"<a/>", b"\xef\xbb\xbf" + text, b"\xff\xfe",
                               text + text, text + b"x", b"x" + text, b"\n" + text))
        return text.replace(b"<AdapterID>", b'<AdapterID type="' + b"t" * 5000 + b'">')

    # ---- Answers ------------------------------------------------------------------------------

    def answers(self, name):
        """What the controller answers to the function, as (called function, code, parts)."""
        if name in LISTS:
            return self.list_answers(name)
        maker = getattr(self, name, None)
        if maker:
            return maker()
        return [(name, self.code(), [])] if name in PLAIN else []

    def code(self):
        rng = self.rng
        return 0 if rng.random() < 0.8 else rng.randrange(1, 256)

    def record(self, name):
        """A record of random bytes, with texts that are mostly texts."""
        rng = self.rng
        data = bytearray(rng.randbytes(layout(name).size))
        if rng.random() < 0.7:
            for field in TEXTS.get(name, ()):
                offset, size = field
                text = rng.choice((b"", b"KESTREL X4 Archive", b"  a ", b"0123", b"SN 17 ",
                                   b"]]>", b"<&>", b"x" * 40, b"one"))[:size]
                data[offset:offset + size] = text.ljust(size, b"\0")
        return bytes(data)

    def adapter_info(self, **fields):
        data = bytearray(self.record("Adapter_Info"))
        for field, value in fields.items():
            shape = layout("Adapter_Info")
            struct.pack_into("<" + shape.places[field][2], data, shape.offsets[field], value)
        return bytes(data)

    def buffer_size(self):
        """The adapter's answer about the most that it moves in one call."""
        rng = self.rng
        kibibytes = rng.choice((0, 0, 0, 1, 2, 4, 64, 1024, 65535, rng.randrange(65536)))
        answer = [b"\1", self.adapter_info(MaxBufferSize=kibibytes)]
        return [("HX_Adapter_GetInfo", self.code(), answer if rng.random() < 0.8 else [])]

    def page(self, record, most, following=None, returned=None):
        rng = self.rng
        count = rng.choice((0, 1, 1, 2, 2, 3, 5, 8) + ((most,) if rng.random() < 0.05 else ()))
        count = min(count, most)
        items = b"".join(self.record(record) for _ in range(count))
        if returned is None:
            returned = count if rng.random() < 0.9 else rng.choice((0, 1, 130, 600, 65535))
        if following is None:
            following = 65535 if rng.random() < 0.6 else rng.choice((0, 1, 2, 50, 65534))
        header = struct.pack("<BBHHHH6s", 0, 1, 0, 0, returned, following, bytes(6))
        if rng.random() < 0.1:
            header = rng.randbytes(6) + header[6:10] + rng.randbytes(6)
        return header + items

    def list_answers(self, name):
        rng = self.rng
        _, record, limit, _ = LISTS[name]
        answers = self.buffer_size() if rng.random() < 0.7 else []
        called = "HX_PD_GetHDRaidStatus" if name == "HX_PD_GetSpareInfo" else name
        names = (["HX_PD_GetHDInfo_Ext", called] if name == "HX_PD_GetHDInfo" else [called])
        whole = rng.random() < 0.02
        for _ in range(rng.choice((0, 1, 1, 1, 2, 2, 3, 5))):
            for each in names:
                if whole:
                    items = b"".join(self.record(record) for _ in range(limit))
                    header = struct.pack("<BBHHHH6x", 0, 1, 0, 0, limit, rng.choice((7, 65535)))
                    answers.append((each, 0, [header + items]))
                elif rng.random() < 0.05:
                    answers.append((each, self.code(), []))
                else:
                    answers.append((each, self.code(), [self.page(record, limit)]))
        return answers

    def HX_API_Version(self):
        rng = self.rng
        text = rng.choice((b"7.5.3", b"", b"v" * 126, b"v" * 127, b"v" * 300, b"<&>",
                           bytes(rng.randrange(1, 256) for _ in range(20))))
        return [("HX_API_Version", 0, [text] if rng.random() < 0.9 else [])]

    def counts(self):
        """The number of adapters, asked before each of them and once more at the end."""
        rng = self.rng
        number = rng.choice((0, 1, 2, 3, 4, 9))
        counts = [number] * (number + 1)
        if rng.random() < 0.1:
            counts = [rng.randrange(6) for _ in counts]
        return number, [("HX_Adapter_GetCount", count, []) for count in counts]

    def told(self, brought):
        rng = self.rng
        return bytes([brought if rng.random() < 0.9 else rng.choice((0, 1, 3, 255, 128))])

    def HX_Adapter_GetCount(self):
        return [("HX_Adapter_GetCount", self.rng.randrange(256), [])]

    def _adapters(self, name, record):
        number, answers = self.counts()
        for _ in range(max(number, 1)):
            parts = [self.told(1), self.record(record)] if self.rng.random() < 0.9 else []
            answers.append((name, self.code(), parts))
        return answers

    def HX_Adapter_GetInfo(self):
        return self._adapters("HX_Adapter_GetInfo", "Adapter_Info")

    def HX_Adapter_GetConfig(self):
        return self._adapters("HX_Adapter_GetConfig", "Adapter_Config_V2")

    def _elements(self, name, record):
        rng = self.rng
        number, answers = self.counts()
        for _ in range(max(number, 1)):
            count = rng.choice((0, 1, 2, 6, 200, 255) if rng.random() < 0.05 else (0, 1, 2, 6))
            items = rng.randbytes(count * layout(record).size)
            answers.append((name, self.code(), [items, self.told(count)]))
        return answers

    def HX_ENC_GetElementInfo(self):
        return self._elements("HX_ENC_GetElementInfo", "EncElementType_Info")

    def HX_ENC_GetElementConfig(self):
        return self._elements("HX_ENC_GetElementConfig", "EncElement_Config")

    def HX_Adapter_SetConfig(self):
        return [("HX_Adapter_GetConfig", self.code(), [b"\1", self.record("Adapter_Config_V2")]),
                ("HX_Adapter_GetInfo", self.code(), [b"\1", self.record("Adapter_Info")]),
                ("HX_Adapter_SetConfig", self.code(), [])]

    def HX_PD_GetRCT(self):
        rng = self.rng
        count = rng.choice((0, 1, 2, 149, 150, 151, 1000, rng.randrange(300)))
        records = rng.randbytes(16 * count) if rng.random() < 0.9 else b""
        parts = [struct.pack("<I", count)] if rng.random() < 0.9 else []
        return [("HX_PD_RCT_GetCount", self.code(), parts),
                ("HX_PD_GetRCT", self.code(), [records])]

    def _changes(self, name, record):
        """A function that gets a record back as the controller has changed it."""
        return [(name, self.code(), [self.record(record)] if self.rng.random() < 0.7 else [])]

    def HX_PD_GetMBRInfo(self):
        return self._changes("HX_PD_GetMBRInfo", "HD_MBR_Info")

    def HX_LD_GetTargetLDInfo(self):
        return self._changes("HX_LD_GetTargetLDInfo", "LD_Info")

    def HX_LD_GetMaxSize(self):
        return self._changes("HX_LD_GetMaxSize", "Create_LD_Param")

    def HX_LD_GetMigratedLdSize(self):
        return self._changes("HX_LD_GetMigratedLdSize", "Create_LD_Param")

    def HX_BBU_GetInfo(self):
        return self._changes("HX_BBU_GetInfo", "BBU_Info")

    def HX_DG_Create(self):
        return self._changes("HX_CreateOrModify_DG", "CreateOrModify_DG_Param")

    HX_DG_GetSizeOnly = HX_DG_Modify = HX_DG_Create

    def _group(self):
        if self.rng.random() < 0.2:
            return []
        return [("HX_DG_GetInfo", self.code(), [self.page("DG_Info", 1)])]

    def HX_DG_StartMigration(self):
        return self._group() + [("HX_DG_StartMigration", self.code(), [])]

    def HX_LD_Create_OnDG(self):
        return self._group() + [("HX_CreateOrModify_VD", self.code(), [])]

    def HX_LD_Modify_OnDG(self):
        return [("HX_CreateOrModify_VD", self.code(), [])]

    def HX_DG_SetConfig(self):
        return [("HX_DG_GetConfig", self.code(), [self.page("DG_Config", 1)]),
                ("HX_DG_SetConfig", self.code(), [])]

    def HX_BBU_ActRelearn(self):
        return [("HX_BBU_ChangePower", self.code(), [])]

    def HX_BBU_SetThreshold(self):
        return [("HX_BBU_SetThreshold", self.code(), []), ("HX_BBU_SetThreshold", self.code(), [])]

    def HX_Flash_Option(self):
        """Pieces up to one that ends the transfer, or a failure: a list without an end is long."""
        rng = self.rng
        answers = []
        for _ in range(rng.choice((0, 0, 1, 2))):
            answers.append(("HX_Flash_Bin", 0, [self.piece(0)]))
        if rng.random() < 0.8:
            answers.append(("HX_Flash_Bin", 0, [self.piece(rng.randrange(1, 256))]))
        else:
            answers.append(("HX_Flash_Bin", rng.randrange(1, 256), []))
        return answers

    def piece(self, last):
        rng = self.rng
        length = rng.choice((0, 1, 500, 32768, 32769, 4294967295))
        data = rng.randbytes(min(length, rng.choice((10, 600))))
        return struct.pack("<IHBB4x", length, rng.randrange(65536), last, 0) + data

    def HX_LD_QuickCreate(self):
        rng = self.rng
        disks = [rng.choice((1, 2, 3, 4, 5, 6, 7, 8, 500)) for _ in range(rng.randrange(9))]
        if rng.random() < 0.05:
            disks *= 20
        items = b"".join(struct.pack("<HHB3x", disk, 0, rng.choice((0, 0, 0, 0, 1, 4, 8, 0x40)))
                         for disk in disks)
        returned = len(disks) if rng.random() < 0.9 else rng.choice((0, 128, 129, 65535))
        header = struct.pack("<BBHHHH6x", 0, 1, 0, 0, returned, 65535)
        answers = [("HX_PD_GetHDRaidStatus", self.code(), [header + items])]
        for _ in disks:
            for _ in range(rng.choice((1, 1, 1, 2, 3))):
                answers.append(("HX_BLK_GetInfo", self.code(), self.blocks(disks)))
            answers.append(("HX_DiskHasOS", 0 if rng.random() < 0.9 else 1, []))
        mode = rng.choice((0x17F, 0, 1, 3, 0x17, rng.randrange(65536)))
        answers.append(("HX_Adapter_GetInfo", self.code(),
                        [b"\1", self.adapter_info(LogicalDriverMode=mode)]))
        answers.append(("HX_LD_Create", self.code(), []))
        return answers

    def blocks(self, disks):
        rng = self.rng
        if rng.random() < 0.1:
            return []
        items = b""
        for _ in range(rng.choice((0, 1, 2, 3))):
            items += struct.pack("<HHHH24x", 0, rng.choice(disks), 0, rng.choice((255, 255, 255, 1)))
        following = 65535 if rng.random() < 0.8 else rng.randrange(4)
        returned = len(items) // 32 if rng.random() < 0.95 else 65535
        return [struct.pack("<BBHHHH6x", 0, 1, 0, 0, returned, following) + items]

    # ---- Events -------------------------------------------------------------------------------

    def event(self):
        rng = self.rng
        kind = rng.choice(tuple(range(EVENT_CLASSES)) + (0, 1, 2, 9, 12, 65535))
        code = rng.choice((rng.randrange(12), rng.randrange(110), 9, 100, 65535))
        number = rng.choice((0, rng.randrange(50), rng.randrange(1 << 32), rng.randrange(2000)))
        params = [rng.choice((0, 1, 50, 0x80000000, rng.getrandbits(32))) for _ in range(4)]
        sense = rng.choice((b"SN-0001", b"", rng.randbytes(30), b"x" * 30))
        return struct.pack("<HHIHBBI4IBB30s", kind, code, rng.getrandbits(31), rng.randrange(65536),
                           rng.randrange(10), rng.randrange(5), number, *params,
                           rng.choice((0, 0, 5, 30, 31, 255)), 0, sense)

    def polls(self):
        """What the adapters' queues hold, poll by poll."""
        rng = self.rng
        answers = []
        for _ in range(rng.choice((0, 1, 2, 4, 8))):
            count = rng.choice((0, 1, 2, 5, 20, 50))
            told = count if rng.random() < 0.95 else rng.choice((51, 100, 255, 0))
            events = b"".join(self.event() for _ in range(count))
            answers.append(("HX_EVT_GetEvent", self.code(), [bytes([told]), events]))
        return answers


IMAGE_SIZES = (0, 1, 100, 32767, 32768, 32769, 65536, 100000)

# Where the texts of a record stand: offset and width.
TEXTS = {
    "HD_Info": ((64, 40), (104, 20), (124, 8)),
    "Adapter_Info": ((102, 20),),
    "LD_Info": ((24, 16),),
    "LD_Config": ((6, 16),),
    "DG_Info": ((4, 16),),
    "DG_Config": ((3, 16),),
    "Create_LD_Param": ((272, 16),),
    "Enclosure_Info": ((50, 17), (67, 9), (76, 17), (93, 5)),
    "Exp_Info": ((56, 9), (65, 17), (82, 5), (87, 9)),
}
