#!/usr/bin/env python3
"""Reference model of the rotor machine, used by the crypto tests as an outside oracle.

usage: rotor_model.py ROTORS KEYHEX DATAHEX encrypt|decrypt

Prints, one per line:
  keys k0 k1 k2 k3 k4          key words after folding in the key
  positions p0 ...             positions right after the rotors are drawn
  advances a0 ...              advances (always odd)
  wiring HEX                   every rotor's encryption permutation, rotor after rotor
  output HEX                   the data run through the machine
  final p0 ...                 positions after the last byte
"""
import sys

SIZE = 256


def rot3(k):
    return ((k << 3) | (k >> 13)) & 0xFFFF


def key_words(key):
    k = [995, 576, 767, 671, 463]
    for byte in key:
        signed = byte - 256 if byte > 127 else byte
        c = signed & 0xFFFF
        k[0] = (rot3(k[0]) + c) & 0xFFFF
        k[1] = rot3(k[1]) ^ c
        k[2] = (rot3(k[2]) - c) & 0xFFFF
        k[3] = (c - rot3(k[3])) & 0xFFFF
        k[4] = (rot3(k[4]) ^ (~c & 0xFFFF)) & 0xFFFF
    k[1] |= 1
    return k


class Machine:
    def __init__(self, rotors, key):
        self.n = rotors
        self.k = key_words(key)

    def random(self, n):
        self.s1 = (171 * self.s1) % 30269
        self.s2 = (172 * self.s2) % 30307
        self.s3 = (170 * self.s3) % 30323
        u = self.s2 / 30307.0 + self.s1 / 30269.0 + self.s3 / 30323.0
        u = u - int(u)
        if u >= 1.0:
            u = 0.0
        v = int(n * u) & 0xFFFF
        if v >= 0x8000:
            v -= 0x10000
        # C remainder: truncating, sign of the dividend
        r = abs(v) % n
        return r if v >= 0 else -r

    def build(self):
        self.s1, self.s2, self.s3 = self.k[0], self.k[1], self.k[2]
        self.pos = [1] * self.n
        self.adv = [1] * self.n
        self.enc = [list(range(SIZE)) for _ in range(self.n)]
        self.dec = [list(range(SIZE)) for _ in range(self.n)]
        for i in range(self.n):
            self.pos[i] = self.random(SIZE) & 0xFF
            self.adv[i] = ((2 * self.random(SIZE // 2)) | 1) & 0xFF
            e, d = self.enc[i], self.dec[i]
            for k in range(SIZE, 1, -1):
                r = self.random(k)
                e[r], e[k - 1] = e[k - 1], e[r]
                d[e[k - 1]] = k - 1
            d[e[0]] = 0

    def step(self):
        for i in range(self.n):
            t = self.pos[i] + self.adv[i]
            self.pos[i] = t % SIZE
            if t >= SIZE and i < self.n - 1:
                self.pos[i + 1] = (self.pos[i + 1] + 1) & 0xFF

    def encrypt(self, data):
        out = bytearray()
        for c in data:
            for i in range(self.n):
                c = self.enc[i][(c ^ self.pos[i]) % SIZE]
            out.append(c)
            self.step()
        return bytes(out)

    def decrypt(self, data):
        out = bytearray()
        for c in data:
            for i in range(self.n - 1, -1, -1):
                c = (self.dec[i][c] ^ self.pos[i]) % SIZE
            out.append(c)
            self.step()
        return bytes(out)


def main():
    rotors, key, data, mode = int(sys.argv[1]), bytes.fromhex(sys.argv[2]), bytes.fromhex(sys.argv[3]), sys.argv[4]
    m = Machine(rotors, key)
    m.build()
    print("keys", *m.k)
    print("positions", *m.pos)
    print("advances", *m.adv)
    print("wiring", "".join(bytes(e).hex() for e in m.enc))
    out = m.encrypt(data) if mode == "encrypt" else m.decrypt(data)
    print("output", out.hex())
    print("final", *m.pos)


if __name__ == "__main__":
    main()
