"""End-to-end tests of the installed zulutil, run as a separate process.

Usage: test_zulutil.py TOOL VERSION MAN_PAGE [--wine WINE]
  TOOL is the installed zulutil or zulutil.exe, VERSION the version it must report, MAN_PAGE the
  installed manual page.
"""
import base64
import hashlib
import os
import random
import re
import resource
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import unittest

import msf_format

TOOL = None
WINE = None
VERSION = None
MAN_PAGE = None


def run(args, stdin=b"", cwd=None, memory=None, stdout=subprocess.PIPE):
    command = ([WINE] if WINE else []) + [TOOL] + args
    limit = None
    if memory and not WINE and b"__asan_init" not in open(TOOL, "rb").read():  # no limit fits a sanitizer
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (memory, memory))
    p = subprocess.run(command, input=stdin, stdout=stdout, stderr=subprocess.PIPE, cwd=cwd, timeout=300,
                       preexec_fn=limit)
    return p.returncode, p.stdout, p.stderr


class ToolTest(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.mkdtemp(prefix="zulutil-e2e-")

    def tearDown(self):
        shutil.rmtree(self.dir, ignore_errors=True)

    def path(self, name):
        return os.path.join(self.dir, name)

    def write(self, name, data):
        with open(self.path(name), "wb") as f:
            f.write(data)

    def read(self, name):
        with open(self.path(name), "rb") as f:
            return f.read()

    def tool(self, *args, stdin=b"", memory=None, stdout=subprocess.PIPE):
        return run(list(args), stdin=stdin, cwd=self.dir, memory=memory, stdout=stdout)


class ContainerTest(ToolTest):
    def test_put_list_verify_get_round_trip(self):
        data = bytes(random.Random(1).getrandbits(8) for _ in range(70000))
        self.write("data.bin", data)
        self.assertEqual(self.tool("msf", "put", "c.msf", "binary", "data.bin")[0], 0)
        self.assertEqual(self.tool("msf", "put", "c.msf", "text", stdin=b"hello\n")[0], 0)
        self.assertEqual(self.tool("msf", "put", "c.msf", "empty", stdin=b"")[0], 0)
        status, out, _ = self.tool("msf", "list", "c.msf")
        self.assertEqual(status, 0)
        lines = out.decode().splitlines()
        self.assertIn("3 sections", lines[0])
        self.assertEqual([l.split()[0] for l in lines[1:]], ["binary", "text", "empty"])
        self.assertTrue(all(l.split()[-1] == "ok" for l in lines[1:]))
        self.assertEqual(self.tool("msf", "verify", "c.msf")[0], 0)
        self.assertEqual(self.tool("msf", "get", "c.msf", "binary")[1], data)
        self.assertEqual(self.tool("msf", "get", "c.msf", "text", "-o", "t.out")[0], 0)
        self.assertEqual(self.read("t.out"), b"hello\n")
        # Replacing a section keeps the others.
        self.assertEqual(self.tool("msf", "put", "c.msf", "text", stdin=b"again")[0], 0)
        self.assertEqual(self.tool("msf", "get", "c.msf", "text")[1], b"again")
        self.assertEqual(self.tool("msf", "get", "c.msf", "binary")[1], data)

    def test_independent_writer_and_reader_agree_with_the_tool(self):
        sections = [(b"alpha", b"A" * 100), (b"beta", bytes(range(256)) * 3), (b"nothing", b"")]
        self.write("py.msf", msf_format.write(sections))
        status, out, _ = self.tool("msf", "list", "py.msf")
        self.assertEqual(status, 0)
        for (name, data), line in zip(sections, out.decode().splitlines()[1:]):
            fields = line.split()
            self.assertEqual(fields[0], name.decode())
            self.assertEqual(int(fields[1]), len(data))
            self.assertEqual(int(fields[2], 16), msf_format.crc32_mpeg2(data))
            self.assertEqual(self.tool("msf", "get", "py.msf", name.decode())[1], data)

        self.tool("msf", "put", "tool.msf", "first", stdin=b"one")
        self.tool("msf", "put", "tool.msf", "second", stdin=bytes(1000))
        parsed = msf_format.read(self.read("tool.msf"))
        self.assertEqual([(n, d) for n, d, _, _ in parsed], [(b"first", b"one"), (b"second", bytes(1000))])
        self.assertTrue(all(ok for _, _, _, ok in parsed))

    def test_corruption_gives_status_one_and_names_the_section(self):
        self.write("c.msf", msf_format.write([(b"good", b"x" * 50), (b"bad", b"y" * 50)]))
        blob = bytearray(self.read("c.msf"))
        blob[-10] ^= 0xFF
        self.write("c.msf", bytes(blob))
        status, out, _ = self.tool("msf", "verify", "c.msf")
        self.assertEqual(status, 1)
        self.assertIn(b'"bad"', out)
        self.assertNotIn(b'"good"', out)
        status, out, _ = self.tool("msf", "list", "c.msf")
        self.assertEqual(status, 1)
        self.assertIn(b"CORRUPT", out)
        # A truncated table is a failed check too; a file that is no container is an input error.
        self.write("t.msf", self.read("c.msf")[:20])
        self.assertEqual(self.tool("msf", "verify", "t.msf")[0], 1)
        self.write("n.msf", b"not a container at all")
        self.assertEqual(self.tool("msf", "verify", "n.msf")[0], 2)
        self.assertEqual(self.tool("msf", "verify", "missing.msf")[0], 2)
        # A 54-byte table that claims sections of 2 GiB costs what the file holds: in an address
        # space of 512 MiB the section before them checks and they are corrupt.
        entry = lambda name, length, crc: struct.pack("<i", len(name)) + name + struct.pack("<iI", length, crc)
        self.write("huge.msf", bytes([0x28, 0xC1, 0x1D, 0xAF]) + struct.pack("<ii", 1, 3) +
                   entry(b"a", 3, msf_format.crc32_mpeg2(b"abc")) + entry(b"b", 0x7FFFFFFF, 0) +
                   entry(b"c", 0x7FFFFFFF, 0) + b"abc")
        status, out, _ = self.tool("msf", "list", "huge.msf", memory=512 << 20)
        self.assertEqual(status, 1)
        self.assertEqual([line.split()[-1] for line in out.decode().splitlines()[1:]], ["ok", "CORRUPT", "CORRUPT"])
        self.assertEqual(self.tool("msf", "verify", "huge.msf", memory=512 << 20)[0], 1)
        self.assertEqual(self.tool("msf", "get", "huge.msf", "a", memory=512 << 20)[1], b"abc")
        status, _, err = self.tool("msf", "get", "huge.msf", "c", memory=512 << 20)
        self.assertEqual(status, 2)
        self.assertIn(b'Data corrupted in section "c"', err)

    def test_recover_from_a_complete_save_file(self):
        good = msf_format.write([(b"s", b"payload" * 100)])
        self.write("c.msf", good[:30])  # damaged container
        self.write("c.msf.4242.tmp", good)  # the complete save file beside it
        status, out, _ = self.tool("msf", "recover", "c.msf")
        self.assertEqual(status, 0, out)
        self.assertIn(b"restored", out)
        self.assertEqual(self.read("c.msf"), good)
        self.assertFalse(os.path.exists(self.path("c.msf.4242.tmp")))
        # Nothing to do on a good container; nothing changes without a usable save file.
        self.assertEqual(self.tool("msf", "recover", "c.msf")[0], 0)
        self.write("d.msf", good[:30])
        self.write("d.msf.7.tmp", good[:40])
        self.assertEqual(self.tool("msf", "recover", "d.msf")[0], 1)
        self.assertEqual(self.read("d.msf"), good[:30])

    def test_locks_are_reported_and_only_stale_ones_removed_unforced(self):
        self.write("c.msf", msf_format.write([(b"s", b"data")]))
        lock = self.path("c.msf.lock")
        self.assertEqual(self.tool("msf", "unlock", "c.msf")[:2], (0, b"c.msf: not locked\n"))
        # An empty lock file (an older writer's, or one that ended before writing): owner unknown.
        self.write("c.msf.lock", b"")
        for action in ["list", "verify"]:
            status, out, _ = self.tool("msf", action, "c.msf")
            self.assertEqual(status, 0, action)
            self.assertEqual(out.splitlines()[0], b"c.msf: locked by an unknown owner (empty or unreadable lock file)")
        status, _, err = self.tool("msf", "unlock", "c.msf")
        self.assertEqual(status, 1)
        self.assertIn(b"unknown owner", err)
        self.assertTrue(os.path.exists(lock))
        self.assertEqual(self.tool("msf", "unlock", "c.msf", "-force")[0], 0)
        self.assertFalse(os.path.exists(lock))
        # An owner on another host: named, and kept without -force.
        self.write("c.msf.lock", b"pid=4711 host=elsewhere.invalid started=1/x\n")
        owner = b"pid 4711 on host elsewhere.invalid, started 1/x"
        status, out, _ = self.tool("msf", "list", "c.msf")
        self.assertEqual(status, 0)
        self.assertEqual(out.splitlines()[0], b"c.msf: locked by " + owner + b"; another host: whether it runs cannot be told here")
        self.assertIn(b"1 sections", out.splitlines()[1])
        status, _, err = self.tool("msf", "unlock", "c.msf")
        self.assertEqual(status, 1)
        self.assertIn(owner, err)
        self.assertTrue(os.path.exists(lock))
        status, out, _ = self.tool("msf", "unlock", "c.msf", "-force")
        self.assertEqual((status, out), (0, b"c.msf: removed the lock of " + owner + b"\n"))
        self.assertFalse(os.path.exists(lock))
        self.assertEqual(self.tool("msf", "unlock")[0], 2)

    def test_killed_save_then_recover_gives_a_valid_container(self):
        if WINE:
            self.skipTest("SIGKILL of a Windows process under Wine is not a crash of the process alone")
        sections = [(("s%02d" % i).encode(), bytes([i]) * (1 << 20)) for i in range(24)]
        self.write("big.msf", msf_format.write(sections))
        self.write("new.bin", b"N" * (8 << 20))
        rng = random.Random(5)
        for attempt in range(6):
            p = subprocess.Popen([TOOL, "msf", "put", "big.msf", "s03", "new.bin"], cwd=self.dir,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(rng.uniform(0.0, 0.4))
            p.send_signal(signal.SIGKILL)
            p.wait()
            # The killed writer's lock, if it took one, is stale.
            self.assertEqual(self.tool("msf", "unlock", "big.msf")[0], 0)
            self.assertFalse(os.path.exists(self.path("big.msf.lock")))
            if self.tool("msf", "verify", "big.msf")[0] != 0:
                self.assertEqual(self.tool("msf", "recover", "big.msf")[0], 0)
            self.assertEqual(self.tool("msf", "verify", "big.msf")[0], 0, "attempt %d" % attempt)
            for name in os.listdir(self.dir):
                if name.endswith(".tmp"):
                    os.remove(self.path(name))


class OtherCommandsTest(ToolTest):
    def test_md5_matches_md5sum_and_hashlib(self):
        self.write("a.txt", b"hello world\n")
        self.write("b.bin", bytes(range(256)) * 1000)
        self.write("empty", b"")
        status, out, _ = self.tool("md5", "a.txt", "b.bin", "empty")
        self.assertEqual(status, 0)
        expected = "".join("%s  %s\n" % (hashlib.md5(self.read(n)).hexdigest(), n) for n in ["a.txt", "b.bin", "empty"])
        self.assertEqual(out.decode(), expected)
        if shutil.which("md5sum"):
            ref = subprocess.run(["md5sum", "a.txt", "b.bin", "empty"], cwd=self.dir, stdout=subprocess.PIPE).stdout
            self.assertEqual(out, ref)
        self.assertEqual(self.tool("md5", stdin=b"abc")[1].decode(), hashlib.md5(b"abc").hexdigest() + "  -\n")

    def test_crc_is_the_container_checksum(self):
        self.write("n.txt", b"123456789")
        self.assertEqual(self.tool("crc", "n.txt")[1], b"0376e6e7  n.txt\n")

    def test_ciphers_round_trip_and_need_a_key_file(self):
        data = bytes(random.Random(3).getrandbits(8) for _ in range(1001))
        self.write("plain", data)
        self.write("key", b"correct horse\n")
        for cipher in ["blowfish", "rotor"]:
            status, enc, _ = self.tool("encrypt", "-cipher", cipher, "-keyfile", "key", "plain")
            self.assertEqual(status, 0)
            self.assertNotEqual(enc, data)
            status, dec, _ = self.tool("decrypt", "-cipher", cipher, "-keyfile", "key", stdin=enc)
            self.assertEqual((status, dec), (0, data))
        self.assertEqual(self.tool("encrypt", "-cipher", "rotor", "plain")[0], 2)
        self.assertEqual(self.tool("encrypt", "-cipher", "des", "-keyfile", "key", "plain")[0], 2)

    def test_base64_is_standard_base64_with_bang_for_slash(self):
        data = bytes(random.Random(9).getrandbits(8) for _ in range(1000)) + bytes([0xFB, 0xFF, 0xFF])
        self.write("d.bin", data)
        for flags in [[], ["-wrap"]]:
            status, text, _ = self.tool("base64", *flags, "d.bin")
            self.assertEqual(status, 0)
            self.assertNotIn(b"/", text)
            self.assertEqual(base64.b64decode(text.replace(b"!", b"/")), data)
            if flags:
                self.assertTrue(all(len(line) <= 76 for line in text.splitlines()))
            status, back, _ = self.tool("base64", "-d", *flags, stdin=text)
            self.assertEqual((status, back), (0, data))
        status, _, err = self.tool("base64", "-d", stdin=b"ab/d")
        self.assertEqual(status, 2)
        self.assertIn(b"base64", err)

    def test_rgx_match_split_subn(self):
        status, out, _ = self.tool("rgx", "match", "(\\w+)@(\\w+)", "mail bob@example now")
        self.assertEqual((status, out.decode().splitlines()), (0, ["0: bob@example", "1: bob", "2: example"]))
        self.assertEqual(self.tool("rgx", "match", "z+", "abc")[0], 1)
        status, out, _ = self.tool("rgx", "split", ",", stdin=b"a,,b,\n")
        self.assertEqual((status, out), (0, b"a\nb\n\n"))
        status, out, _ = self.tool("rgx", "subn", "b", "[$&]", "abcb")
        self.assertEqual((status, out), (0, b"a[b]c[b]\n"))
        status, out, _ = self.tool("rgx", "subn", "b", "-", "abcb", "-count", "1")
        self.assertEqual(out, b"a-cb\n")
        status, _, err = self.tool("rgx", "match", "(", "x")
        self.assertEqual(status, 2)
        self.assertIn(b"error in regex at offset", err)

    def test_host_reports_the_platform_and_processors(self):
        status, out, _ = self.tool("host")
        self.assertEqual(status, 0)
        facts = dict(line.split(None, 1) for line in out.decode().splitlines() if " " in line)
        self.assertEqual(facts["platform"].strip(), "win86_64" if WINE else "lnx86_64")
        self.assertGreaterEqual(int(facts["processors"]), 1)
        self.assertIn(facts["sse3"].strip(), ["yes", "no"])

    def test_a_failed_write_to_standard_output_is_status_two(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full")
        self.write("a.txt", b"x" * 100)
        self.write("key", b"key\n")
        self.write("c.msf", msf_format.write([(b"s", b"data" * 5000)]))
        for args in [["md5", "a.txt"], ["crc", "a.txt"], ["base64", "a.txt"], ["msf", "list", "c.msf"],
                     ["msf", "verify", "c.msf"], ["msf", "get", "c.msf", "s"], ["msf", "unlock", "c.msf"],
                     ["encrypt", "-cipher", "rotor", "-keyfile", "key", "a.txt"], ["rgx", "match", "x", "x"],
                     ["host"], ["help"], ["--version"]]:
            with open("/dev/full", "wb") as full:
                status, _, err = self.tool(*args, stdout=full)
            self.assertEqual(status, 2, args)
            self.assertIn(b"zulutil: write error on standard output", err, args)


class ConventionsTest(ToolTest):
    def test_usage_errors_go_to_standard_error_with_status_two(self):
        for args in [[], ["bogus"], ["--bogus"], ["msf"], ["msf", "list"], ["msf", "frobnicate", "x"]]:
            status, out, err = self.tool(*args)
            self.assertEqual((status, out), (2, b""), args)
            self.assertIn(b"usage", err)

    def test_help_and_version_go_to_standard_output_with_status_zero(self):
        for args in [["--help"], ["-h"], ["help"]]:
            status, out, err = self.tool(*args)
            self.assertEqual((status, err), (0, b""), args)
            self.assertIn(b"zulutil msf list FILE", out)
            self.assertIn(b"zulutil md5", out)
        for args in [["help", "msf"], ["msf", "--help"], ["msf", "-h"], ["--help", "msf"]]:
            status, out, err = self.tool(*args)
            self.assertEqual((status, err), (0, b""), args)
            self.assertIn(b"zulutil msf list FILE", out)
            self.assertNotIn(b"zulutil md5", out)
        status, out, err = self.tool("--version")
        self.assertEqual((status, out.decode().strip(), err), (0, "zulutil " + VERSION, b""))

    def test_manual_page_documents_every_command(self):
        env = dict(os.environ, MANWIDTH="200", LANG="C", LC_ALL="C")
        page = subprocess.run(["man", "-l", MAN_PAGE], env=env, stdout=subprocess.PIPE, check=True).stdout.decode()
        entries = [line.strip() for line in page.splitlines()]
        _, usage, _ = self.tool("help")
        phrases = []
        for line in usage.decode().splitlines():
            if not line.startswith("zulutil "):
                continue
            # The command and its action: the synopsis (before the gap that starts the
            # description) up to its first placeholder or option.
            words = []
            for word in re.split(r"\s{2,}", line.strip())[0].split()[1:]:
                if not re.fullmatch(r"[a-z0-9]+|--[a-z]+", word):
                    break
                words.append(word)
            phrases.append(" ".join(words))
        self.assertIn("msf list", phrases)
        for phrase in phrases:
            self.assertTrue(any(e == phrase or e.startswith(phrase + " ") for e in entries), phrase)


if __name__ == "__main__":
    TOOL = os.path.abspath(sys.argv[1])
    VERSION = sys.argv[2]
    MAN_PAGE = os.path.abspath(sys.argv[3])
    args = sys.argv[4:]
    if args[:1] == ["--wine"]:
        WINE = args[1]
        args = args[2:]
    unittest.main(argv=[sys.argv[0]] + args, verbosity=2)
