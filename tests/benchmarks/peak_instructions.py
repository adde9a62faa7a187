"""Counts the instructions of the loop that PeakRate measures: every update multiplies and subtracts for itself.

usage: peak_instructions.py OBJDUMP OBJECT
"""

import re
import subprocess
import sys

SUMS = 12
WITHOUT_VECTORS = ("N_SCALAR", "N_EMU128")  # never chosen where there is another instruction set
MULTIPLY = re.compile(r"\tv?mul[sp]d\b|\tfmul\b")
SUBTRACT = re.compile(r"\tv?sub[sp]d\b|\tfsub\b")
FUSED = re.compile(r"\tvfn?m(add|sub)\d*[sp]d\b|\tfml[as]\b|\tfn?m(add|sub)\b")
BACKWARD_JUMP = re.compile(r"\s*([0-9a-f]+):\t(?:j\w+|b\.\w+|cbnz|cbz|tbnz|tbz)\s.*?([0-9a-f]+) <")


def functions(objdump, path):
    """Name and instructions (address, text) of each function."""
    text = subprocess.run([objdump, "-dC", "--no-show-raw-insn", path], check=True, capture_output=True, text=True).stdout
    for block in text.split("\n\n"):
        header, *lines = block.strip("\n").split("\n")
        name = re.search(r"<(.*)>:$", header)
        if name:
            yield name.group(1), lines


def loop_of(lines):
    """The instructions from the target of the longest backward jump to that jump."""
    best = []
    for end, line in enumerate(lines):
        jump = BACKWARD_JUMP.match(line)
        if not jump:
            continue
        target = int(jump.group(2), 16)
        begin = next((i for i, earlier in enumerate(lines[:end])
                      if re.match(rf"\s*{target:x}:", earlier)), None)  # fmt: skip
        if begin is not None and end - begin > len(best):
            best = lines[begin:end + 1]
    return best


def main():
    failures = []
    seen = 0
    for name, lines in functions(*sys.argv[1:3]):
        apart = "::subtractRoundedApart(" in name
        fused = "::subtractFused(" in name
        if not (apart or fused) or any(f"::{target}::" in name for target in WITHOUT_VECTORS):
            continue
        loop = loop_of(lines)
        counts = [sum(1 for line in loop if kind.search(line)) for kind in (MULTIPLY, SUBTRACT, FUSED)]
        print(f"{name}: {counts[0]} multiplications, {counts[1]} subtractions, {counts[2]} fused in the loop")
        seen += 1
        is_right = counts[0] == counts[1] and counts[0] % SUMS == 0 and counts[0] > 0 and counts[2] == 0
        if fused and counts[2] > 0:
            is_right = counts[0] == counts[1] == 0 and counts[2] % SUMS == 0
        if not is_right:
            failures.append(name)
    if seen < 2:
        sys.exit("the object holds no such loops")
    if failures:
        sys.exit("not as many multiplications as subtractions, or both fused: " + ", ".join(failures))


if __name__ == "__main__":
    main()
