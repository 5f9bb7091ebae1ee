# Writes a small ledger page by page as a library with these parameters does, without that library:
#
#     make.py by_hand.hcn sha1 64000 48            what the program writes
#     make.py refused_sha512.hcn sha512 256000 80  what the 4.x library writes if nothing else is said
#
# The other files here were made by the 3.4 library with the pragmas that their names tell of.
import hashlib, hmac, os, sqlite3, struct, subprocess, sys

path, algorithm, rounds, reserved = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
PAGE, PASSWORD = 4096, b"KZD1987"

# An empty database, told that the end of each page is not its own, and then filled.
plain = path + ".plain"
database = sqlite3.connect(plain)
for statement in (f"pragma page_size={PAGE}", "pragma user_version=1", "vacuum"):
    database.execute(statement)
database.close()
head = bytearray(open(plain, "rb").read())
head[20] = reserved
head[105:107] = struct.pack(">H", PAGE - reserved)
open(plain, "wb").write(head)
database = sqlite3.connect(plain)
database.executescript("create table TE1 (F1 text collate nocase, F2 text collate nocase, F3 text collate nocase);"
                       "insert into TE1 values ('001', '管理员', '');")
database.close()
pages = open(plain, "rb").read()
os.remove(plain)

salt = os.urandom(16)
key = hashlib.pbkdf2_hmac(algorithm, PASSWORD, salt, rounds, 32)
proof = hashlib.pbkdf2_hmac(algorithm, key, bytes(byte ^ 0x3A for byte in salt), 2, 32)
written = salt
for number in range(len(pages) // PAGE):
    page = pages[number * PAGE:(number + 1) * PAGE - reserved]
    body = page[16:] if number == 0 else page  # the salt stands in place of the file's mark
    start = os.urandom(16)
    body = subprocess.run(["openssl", "enc", "-aes-256-cbc", "-nopad", "-K", key.hex(), "-iv", start.hex()],
                          input=body, capture_output=True, check=True).stdout + start
    mac = hmac.new(proof, body + struct.pack("<I", number + 1), algorithm).digest()
    written += body + mac + bytes(reserved - 16 - len(mac))
open(path, "wb").write(written)
