"""An independent reader and writer of the container format, byte by byte.

Layout (integers 32-bit little-endian): magic 28 C1 1D AF, version 1, section count N, N table
entries (name length, name bytes, data length, CRC of the data), then the data of every section
back to back in table order. CRC-32/MPEG-2: polynomial 0x04C11DB7, most significant bit first,
initial value 0xFFFFFFFF, no reflection, no final XOR.
"""
import struct

MAGIC = bytes([0x28, 0xC1, 0x1D, 0xAF])


def _table():
    table = []
    for i in range(256):
        c = i << 24
        for _ in range(8):
            c = ((c << 1) ^ 0x04C11DB7) if c & 0x80000000 else (c << 1)
            c &= 0xFFFFFFFF
        table.append(c)
    return table


_TABLE = _table()


def crc32_mpeg2(data, crc=0xFFFFFFFF):
    for b in data:
        crc = ((crc << 8) & 0xFFFFFFFF) ^ _TABLE[((crc >> 24) ^ b) & 0xFF]
    return crc


def write(sections):
    """sections: list of (name bytes, data bytes) in table order."""
    out = bytearray(MAGIC)
    out += struct.pack("<ii", 1, len(sections))
    for name, data in sections:
        out += struct.pack("<i", len(name)) + name + struct.pack("<iI", len(data), crc32_mpeg2(data))
    for _, data in sections:
        out += data
    return bytes(out)


def read(blob):
    """Returns [(name, data, stored crc, crc ok)]; raises ValueError on a damaged table."""
    if blob[:4] != MAGIC:
        raise ValueError("not a container")
    version, count = struct.unpack_from("<ii", blob, 4)
    if version != 1 or count < 0:
        raise ValueError("bad header")
    pos = 12
    table = []
    for _ in range(count):
        (n,) = struct.unpack_from("<i", blob, pos)
        pos += 4
        if n < 0 or pos + n > len(blob):
            raise ValueError("bad name length")
        name = blob[pos:pos + n]
        pos += n
        length, crc = struct.unpack_from("<iI", blob, pos)
        pos += 8
        table.append((name, length, crc))
    result = []
    for name, length, crc in table:
        data = blob[pos:pos + length]
        pos += length
        result.append((name, data, crc, len(data) == length and crc32_mpeg2(data) == crc))
    return result


if __name__ == "__main__":
    assert crc32_mpeg2(b"123456789") == 0x0376E6E7
    print("ok")
