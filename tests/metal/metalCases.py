"""The table of the metal tests: for each case what must be seen, from outside the image.

A case names every access to the UART's registers, section by section (Case.sections; the marks are
set in tests/metal/cases), the bytes that leave the port, and what else must hold of the run."""

import itertools

import emulator
from emulator import ABSENT, HOST_CLOCK, INSTRUCTIONS, NEVER_READY, TO_FILE, TO_PIPE

RATES = {"115200": 1, "57600": 2, "38400": 3, "19200": 6, "9600": 12, "4800": 24, "2400": 48,
         "2000": 58, "1800": 64, "1200": 96}
DSR, CTS, RING, DCD = 1, 2, 4, 8  # by the outputs that make them in loopback
LOOPBACK = 0x10
NAMES = {DSR: "DSR", CTS: "CTS", DCD: "DCD", RING: "ring"}
STATUS_BITS = {DSR: 0x20, CTS: 0x10, RING: 0x40, DCD: 0x80}
NEEDED = DSR | CTS | DCD
READY = "R6=b0"
TRANSMITTER_EMPTY = 0x20

MILLISECOND = 1_000_000  # nanoseconds
TICKS_IN_MILLISECOND = 1193  # of the interval timer, rounded down
ABSURD = 10_000 * MILLISECOND  # on the host's clock, which may give the emulator little of its time
SURE = 0.9  # of a time that must have passed; the log's times come from a clock that may be set
POLLS_FOR_LONG = 1000


class Case:
    """`sections` says by mark what the log must show: a list of accesses, which is exact, or a
    function from the accesses to what is wrong. `checks` are functions from the run to that."""

    def __init__(self, title, line, sections, sent=b"", port=None, clock=None, settings=None,
                 checks=()):
        self.title, self.line, self.sections, self.sent = title, line, sections, sent
        self.port = TO_FILE if port is None else port
        self.clock = HOST_CLOCK if clock is None else clock
        self.settings, self.checks = settings or {}, checks

    def complaints(self, run):
        if run.code is None:
            return ["did not end"]
        if set(run.sections) != set(self.sections):
            return [*end_complaints(run),
                    f"sections {sorted(run.sections)} instead of {sorted(self.sections)}"]
        return [*end_complaints(run), *self.section_complaints(run), *self.sent_complaints(run),
                *polling_complaints(run), *[text for check in self.checks for text in check(run)]]

    def section_complaints(self, run):
        for number, expected in self.sections.items():
            section = run.sections[number]
            yield from (f"section {number}: {text}"
                        for text in access_complaints(section.accesses, expected))
            settings = self.settings.get(number)
            if settings not in (None, section.settings):
                yield f"section {number}: the line is set to {section.settings}, not {settings}"

    def sent_complaints(self, run):
        if run.sent != self.sent:
            yield f"sent {run.sent[:40]!r} ({len(run.sent)} bytes) instead of {self.sent[:40]!r}"


def shown(accesses):
    cut = accesses if len(accesses) < 24 else [*accesses[:12], "...", *accesses[-12:]]
    return " ".join(cut) or "nothing"


def access_complaints(accesses, expected):
    if callable(expected):
        return [f"{text}: {shown(accesses)}" for text in expected(accesses)]
    return [] if accesses == expected else [f"{shown(accesses)} instead of {shown(expected)}"]


def end_complaints(run):
    if run.code != emulator.HELD:
        yield f"exit code {run.code} instead of {emulator.HELD}"
    yield from (line for line in run.report if line.startswith("FAILED"))
    if run.report[-1:] != ["done"]:
        yield f"the report ends with {run.report[-1:]}"


def polling_complaints(run):
    """Whatever the case: a byte is written only right after the transmitter was seen empty."""
    for section in run.sections.values():
        is_divisor, before = False, ""
        for access in section.accesses:
            if access.startswith("W3="):
                is_divisor = access == "W3=80"
            elif access.startswith("W0=") and not is_divisor and not shows_empty(before):
                yield f"{access} comes after {before or 'nothing'}"
            before = access


def shows_empty(access):
    return access.startswith("R5=") and int(access[3:], 16) & TRANSMITTER_EMPTY != 0


def opening(divisor):
    return ["W3=80", f"W0={divisor:02x}", "W3=03"]


def on_the_wire(text):
    return text.replace(b"\n", b"\n\r")


def transmission(text):
    return [access for byte in on_the_wire(text) for access in ("R5=60", f"W0={byte:02x}")]


def settings_of(divisor):
    return f"{115200 // divisor} N 8 1"


def control_of(lines):
    return f"{LOOPBACK | lines:#04x}"


def status_of(lines):
    return f"R6={sum(bit for line, bit in STATUS_BITS.items() if lines & line):02x}"


def names_of(lines):
    return " ".join(name for line, name in NAMES.items() if lines & line) or "no line"


def polls_of(status):
    """Nothing but the same modem status, again and again."""
    def check(accesses):
        if len(accesses) < 3 or set(accesses) != {status}:
            yield f"not only polls with {status}"
    return check


def polls_with_change(before, control, after, end):
    """Polls, in their middle a write of the modem control register, then polls of the new status
    (exactly one of them if something follows), then `end`."""
    def check(accesses):
        if control not in accesses:
            yield f"{control} is missing"
            return
        place = accesses.index(control)
        rest = accesses[place + 1:]
        if place < 3 or set(accesses[:place]) != {before}:
            yield f"not only polls with {before} before {control}"
        if end and rest != [after, *end]:
            yield f"after {control} not {shown([after, *end])}"
        if not end and (len(rest) < 3 or set(rest) != {after}):
            yield f"not only polls with {after} after {control}"
    return check


def took(least, most):
    """The wait in nanoseconds, by the time base that the destination uses itself."""
    def check(run):
        nanoseconds = run.numbers().get("nanoseconds", 0)
        if not least <= nanoseconds <= most:
            yield f"took {nanoseconds} ns instead of {least} to {most}"
    return check


def took_ticks(least, most):
    """The same wait by the interval timer."""
    def check(run):
        ticks = run.numbers().get("ticks", 0)
        if not least <= ticks <= most:
            yield f"took {ticks} ticks instead of {least} to {most}"
    return check


def polled_for_a_millisecond(run):
    """The same by the clock of the host: from the first poll to the mark behind the last."""
    if run.sections[2].start - run.sections[1].times[0] < SURE * 0.001:
        yield "the polls lie within less than a millisecond"


def waited_for_transmitter(run):
    """The image polled a full transmitter for much longer than the limit of the modem lines."""
    section = run.sections[1]
    full = [place for place, access in enumerate(section.accesses)
            if access.startswith("R5=") and not shows_empty(access)]
    waited = section.times[full[-1] + 1] - section.times[full[0]] if full else 0
    if len(full) < POLLS_FOR_LONG or waited < SURE * emulator.HOLD:
        yield f"{len(full)} polls of a full transmitter in {waited} s"


def rate_cases():
    for word, divisor in RATES.items():
        yield Case(f"{word} baud is divisor {divisor}", f"rate {word}",
                   {0: [], 1: [], 2: opening(divisor), 3: [], 4: [], 5: []},
                   settings={2: settings_of(divisor)})
    yield Case("without a word the divisor is 1", "rate",
               {0: [], 1: [], 2: opening(1), 3: [], 4: [], 5: []}, settings={2: settings_of(1)})
    yield Case("words that are no rate change nothing", "rate 110 115201 9600x 960 0",
               {0: [], 1: [], 2: opening(1), 3: [], 4: [], 5: []})
    yield Case("the last rate of several counts", "rate 1200 x 2000 9600 y",
               {0: [], 1: [], 2: opening(12), 3: [], 4: [], 5: []})
    yield Case("setDivisor chooses as configure does", "divisor 4800",
               {0: [], 1: opening(24), 2: []}, settings={1: settings_of(24)})
    yield Case("a rate chosen while open waits for the next open", "reopen 1200",
               {0: opening(1), 1: [], 2: [], 3: opening(96), 4: []}, settings={3: settings_of(96)})
    yield Case("setupSerialPort programs divisor, then line control", "setup 12 0x1a",
               {0: [], 1: [], 2: opening(1), 3: ["W3=80", "W0=0c", "W3=1a"], 4: []},
               settings={3: "9600 E 7 1"})
    yield Case("of a divisor only the low byte is written", "setup 0x0160 0x03",
               {0: [], 1: [], 2: opening(1), 3: opening(0x60), 4: []},
               settings={3: settings_of(96)})


def put_cases():
    for title, text in [("a letter", b"x"), ("letters in their order", b"abc"),
                        ("line feed, then carriage return", b"a\nb"), ("two line feeds", b"\n\n"),
                        ("a NUL like any other byte", b"a\0b\0")]:
        yield Case(f"put sends {title}", f"put {text.hex()}",
                   {0: opening(1), 1: [READY, *transmission(text)], 2: []}, on_the_wire(text))
    yield Case("put of nothing looks at the line once", "put",
               {0: opening(1), 1: [READY], 2: []})
    yield Case("put of an empty text looks at nothing", "putText", {0: opening(1), 1: [], 2: []})
    text = b"a\nb"
    yield Case("put of a text looks at the line for each byte", f"putText {text.hex()}",
               {0: opening(1), 2: [],
                1: [access for byte in text for access in [READY, *transmission(bytes([byte]))]]},
               on_the_wire(text))
    text = bytes(range(256))
    yield Case("put sends every byte there is", "putEveryByte",
               {0: opening(1), 1: [READY, *transmission(text)], 2: []}, on_the_wire(text))
    yield Case("a closed destination touches no register", "closed",
               {0: [], 1: [], 2: opening(1), 3: [], 4: []})
    yield Case("the one instance sends", "instance",
               {0: [], 1: [*opening(1), READY, *transmission(b"x")], 2: [], 3: []}, b"x")
    yield Case("open and close a thousand times", "manyTimes",
               {0: [*opening(1), READY, *transmission(b"x")] * 1000}, b"x" * 1000)
    yield Case("a machine without the port does not stop it", "put 610a62", {0: []}, port=ABSENT)


def line_cases():
    """In loopback the byte comes back instead of leaving; section 2 looks whether it did."""
    for chosen in itertools.product([0, DSR], [0, CTS], [0, DCD], [0, RING]):
        lines = sum(chosen)
        start = [f"W4={LOOPBACK | lines:02x}", *opening(1)]
        is_ready = lines & NEEDED == NEEDED
        done = [status_of(lines), *transmission(b"x")] if is_ready else polls_of(status_of(lines))
        loop = ["R5=61", "R0=78"] if is_ready else ["R5=60", "R0=00"]
        yield Case(f"{names_of(lines)}: {'sent' if is_ready else 'nothing is sent'}",
                   f"lines {control_of(lines)}", {0: start, 1: done, 2: loop, 3: []},
                   clock=INSTRUCTIONS)


def limit_cases():
    silent = {0: opening(1), 1: polls_of("R6=00"), 2: []}
    yield Case("put gives up after a millisecond", "limit", silent, port=NEVER_READY,
               clock=INSTRUCTIONS,
               checks=[took(MILLISECOND, MILLISECOND * 11 // 10),
                       took_ticks(TICKS_IN_MILLISECOND, TICKS_IN_MILLISECOND * 11 // 10)])
    yield Case("each byte of a text waits its own millisecond", "limitOfText 616263", silent,
               port=NEVER_READY, clock=INSTRUCTIONS,
               checks=[took(3 * MILLISECOND, 3 * MILLISECOND * 11 // 10),
                       took_ticks(3 * TICKS_IN_MILLISECOND, 3 * TICKS_IN_MILLISECOND * 11 // 10)])
    yield Case("put gives up by the host's clock too", "limit", silent, port=NEVER_READY,
               checks=[took(MILLISECOND, ABSURD), polled_for_a_millisecond])


def change_case(title, before, after, microseconds, is_sent, is_seen=True):
    end = transmission(b"x") if is_sent else []
    polls = (polls_with_change(status_of(before), f"W4={LOOPBACK | after:02x}", status_of(after),
                               end) if is_seen else polls_of(status_of(before)))
    return Case(title, f"linesChange {control_of(before)} {control_of(after)} {microseconds}",
                {0: [f"W4={LOOPBACK | before:02x}", *opening(1)], 1: polls, 2: []},
                clock=INSTRUCTIONS)


def change_cases():
    for line in (DSR, CTS, DCD):
        yield change_case(f"{NAMES[line]} comes in the middle of the wait: sent", NEEDED - line,
                          NEEDED, 500, is_sent=True)
    yield change_case("all lines come in the middle of the wait: sent", 0, NEEDED, 500,
                      is_sent=True)
    yield change_case("two of three lines come: nothing is sent", 0, DSR | CTS, 500, is_sent=False)
    yield change_case("lines that come just before the limit: sent", 0, NEEDED, 950, is_sent=True)
    yield change_case("lines that come after the limit: nothing is sent", 0, NEEDED, 1100,
                      is_sent=False, is_seen=False)


def transmitter_cases():
    def full(accesses):
        # The byte on its way and the one in the holding register are all that the UART takes.
        first = [READY, "R5=60", f"W0={text[0]:02x}", "R5=20", f"W0={text[1]:02x}", "R5=00"]
        if accesses[:6] != first:
            yield "the transmitter was not full after two bytes"
        if [access for access in accesses if access.startswith("W")] != transmission(text)[1::2]:
            yield "other bytes are written"
        if accesses.count(READY) != 1:
            yield "the line is looked at again"

    text = b"it waits as long as it takes\n"
    yield Case("a full transmitter is waited for without a limit", f"putAll {text.hex()}",
               {0: opening(1), 1: full, 2: lambda accesses: [], 3: []}, on_the_wire(text),
               port=TO_PIPE, checks=[waited_for_transmitter])


def cases():
    return [*rate_cases(), *put_cases(), *line_cases(), *limit_cases(), *change_cases(),
            *transmitter_cases()]
