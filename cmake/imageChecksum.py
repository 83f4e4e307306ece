"""imageChecksum.py IMAGE: writes the checksum into the header of a Windows image, which lld-link leaves
at 0. The kernel looks at the one of every driver that it loads early."""

import struct
import sys

SIGNATURE_OFFSET = 0x3C
CHECKSUM_OFFSET = 0x58  # from the signature


def checksum(image):
    """The 16-bit words added with their carries, the checksum itself as 0, and the length."""
    words = struct.unpack(f"<{(len(image) + 1) // 2}H", image + bytes(len(image) % 2))
    total = sum(words)
    while total > 0xFFFF:
        total = (total >> 16) + (total & 0xFFFF)
    return total + len(image)


def main(name):
    with open(name, "r+b") as file:
        image = bytearray(file.read())
        place = struct.unpack_from("<I", image, SIGNATURE_OFFSET)[0] + CHECKSUM_OFFSET
        struct.pack_into("<I", image, place, 0)
        struct.pack_into("<I", image, place, checksum(bytes(image)))
        file.seek(place)
        file.write(image[place:place + 4])


if __name__ == "__main__":
    main(sys.argv[1])
