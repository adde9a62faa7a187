"""Tests of krige report's page in a headless Chromium: report_page_test.py KRIGE EXAMPLES [-v]

What a browser alone can tell: that the page renders without a word on its console, that the pointer reads the values
that krige predict gives, that layers switch, that a narrow screen holds it, and that no picture is cut on paper.
"""

import csv
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from browser import Browser  # noqa: E402

KRIGE = EXAMPLES = None


def krige(*arguments):
    subprocess.run([KRIGE, *arguments], check=True, stderr=subprocess.DEVNULL)


# Each element's box in the window, however far the page is scrolled.
BOX = "(e => { e.scrollIntoView({block: 'center'}); const r = e.getBoundingClientRect();" \
      " return [r.left, r.top, r.width, r.height]; })"


class ReportPageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="fenn-page-")
        cls.model = [f"{EXAMPLES}/rainfall/samples.csv", "--inputs", "x,y", "--outputs", "rainfall", "--scale", "1,1",
                     "--range", "0.4", "--nugget", "0.05", "--units", "m"]
        # Nodes with few digits, so that the page's coordinates are exact; the map reaches beyond the samples.
        cls.page = cls.path("rain.html")
        krige("report", *cls.model, "--grid", "x=-150000:160000:63,y=-100000:110000:43", "-o", cls.page)
        cls.profile = cls.path("profile.html")
        with open(cls.path("line.csv"), "w", encoding="utf-8") as file:
            file.write("x,z\n0,1\n1,3.5\n3,2\n4,7\n8,1\n")
        krige("report", cls.path("line.csv"), "--inputs", "x", "--outputs", "z", "--grid", "81", "-o", cls.profile)
        cls.slices = cls.path("slices.html")
        krige("report", f"{EXAMPLES}/quakes/samples.csv", "--inputs", "long,lat,depth", "--outputs", "mag,stations",
              "--nearest", "20", "--nugget", "0.3", "--grid", "30x30x30", "-o", cls.slices)
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()
        shutil.rmtree(cls.folder)

    @classmethod
    def path(cls, name):
        return os.path.join(cls.folder, name)

    def plot(self, index=0):
        """Left, top, width and height of the visible plot of a map in the window."""
        return self.browser.evaluate(
            f"(() => {{ const layers = document.querySelectorAll('.layers')[{index}];"
            " const svg = [...layers.querySelectorAll('.layer > svg')].find(e => e.checkVisibility());"
            f" const [left, top, width] = {BOX}(svg); const scale = width / svg.viewBox.baseVal.width;"
            " const plot = layers.dataset.plot.split(' ').map(Number);"
            " return [left + scale * plot[0], top + scale * plot[1], scale * plot[2], scale * plot[3]]; })()")

    def read_at(self, across, up, index=0):
        """What the page says with the pointer at these shares of the plot."""
        left, top, width, height = self.plot(index)
        readout = f"document.querySelectorAll('.layers')[{index}].querySelector('.readout')"
        self.browser.evaluate(f"{readout}.textContent = ''")
        self.browser.move_to(left + across * width, top + (1 - up) * height)
        self.browser.wait_until(f"{readout}.textContent !== ''")
        return self.browser.evaluate(f"{readout}.textContent")

    def predicted(self, model, inputs):
        """Estimate and standard error by krige predict."""
        with open(self.path("at.csv"), "w", encoding="utf-8") as file:
            file.write(",".join(inputs) + "\n" + ",".join(inputs.values()) + "\n")
        krige("predict", *model, "--at", self.path("at.csv"), "--variance", "--extrapolate", "-o", self.path("out.csv"))
        with open(self.path("out.csv"), encoding="utf-8") as file:
            row = list(csv.reader(file))[1]
        return float(row[len(inputs)]), float(row[-1])

    def assert_rounded(self, shown, value):
        """The digits shown are the value's own."""
        decimals = len(shown.partition(".")[2])
        self.assertEqual(shown, f"{value:.{decimals}f}")
        self.assertGreaterEqual(len(shown.replace("-", "").replace(".", "").lstrip("0")), 3)

    def test_every_page_renders_without_a_word_on_the_console(self):
        for page in [self.page, self.profile, self.slices]:
            for scheme in ["light", "dark"]:
                with self.subTest(page=page, scheme=scheme):
                    self.browser.use(scheme)
                    self.browser.open(page)
                    self.assertEqual(self.browser.console, [])
                    self.assertEqual([a for a in self.browser.requests if not a.startswith(("file:", "data:"))], [])
                    self.assertEqual(self.browser.requests[0], "file://" + page)
                    self.assertGreater(self.browser.evaluate("document.querySelectorAll('svg').length"), 4)

    def test_pictures_of_layers_are_there(self):
        self.browser.open(self.page)
        sizes = self.browser.evaluate(
            "Promise.all([...document.querySelectorAll('image')].map(async e => { const i = new Image();"
            " i.src = e.href.baseVal; await i.decode(); return [i.naturalWidth, i.naturalHeight]; }))")
        self.assertEqual(sizes, [[63, 43], [63, 43]])

    def test_the_pointer_reads_what_predict_gives(self):
        self.browser.open(self.page)
        for column, row in [(0, 0), (62, 42), (17, 30), (40, 8), (31, 21)]:
            with self.subTest(column=column, row=row):
                text = self.read_at((column + 0.4) / 63, (row + 0.6) / 43)
                match = re.fullmatch(r"x (\S+) m, y (\S+) m: estimate (\S+), standard error (\S+)", text)
                self.assertTrue(match, text)
                self.assertEqual([float(match[1]), float(match[2])], [-150000 + 5000 * column, -100000 + 5000 * row])
                estimate, error = self.predicted(self.model, {"x": match[1], "y": match[2]})
                self.assert_rounded(match[3], estimate)
                self.assert_rounded(match[4], error)
        self.assertEqual(self.browser.console, [])

    def test_a_profile_reads_likewise(self):
        self.browser.open(self.profile)
        match = re.fullmatch(r"x (\S+): estimate (\S+), standard error (\S+)", self.read_at(37.2 / 80, 0.5))
        self.assertEqual(match[1], "3.7")
        model = [self.path("line.csv"), "--inputs", "x", "--outputs", "z"]
        estimate, error = self.predicted(model, {"x": match[1]})
        self.assert_rounded(match[2], estimate)
        self.assert_rounded(match[3], error)

    def test_arrow_keys_move_from_node_to_node(self):
        self.browser.open(self.page)
        self.read_at(10.5 / 63, 20.5 / 43)
        self.browser.evaluate("document.querySelector('.layer > svg').focus()")
        for key in ["ArrowRight", "ArrowRight", "ArrowUp"]:
            self.browser.send("Input.dispatchKeyEvent", type="keyDown", key=key)
        self.browser.wait_until("document.querySelector('.readout').textContent.startsWith('x -90000 m, y 5000 m')")

    def test_layers_switch(self):
        self.browser.open(self.page)
        seen = "[...document.querySelectorAll('.layer')].map(e => e.checkVisibility())"
        self.assertEqual(self.browser.evaluate(seen), [True, False])
        for label, expected in [("Standard error", [False, True]), ("Estimate", [True, False])]:
            left, top, width, height = self.browser.evaluate(
                f"{BOX}([...document.querySelectorAll('label')].find(e => e.textContent === '{label}'))")
            self.browser.click(left + width / 2, top + height / 2)
            self.assertEqual(self.browser.evaluate(seen), expected)

    def test_layers_need_no_script(self):
        self.browser.send("Emulation.setScriptExecutionDisabled", value=True)
        try:
            self.browser.open(self.page)
            self.assertEqual(self.browser.evaluate("document.documentElement.className"), "")
            left, top, width, height = self.browser.evaluate(f"{BOX}(document.querySelectorAll('label')[1])")
            self.browser.click(left + width / 2, top + height / 2)
            self.assertEqual(self.browser.evaluate("[...document.querySelectorAll('.layer')]"
                                                   ".map(e => e.checkVisibility())"), [False, True])
        finally:
            self.browser.send("Emulation.setScriptExecutionDisabled", value=False)

    def test_a_phone_holds_the_page(self):
        for page in [self.page, self.profile, self.slices]:
            with self.subTest(page=page):
                self.browser.open(page, width=400, height=800)
                self.assertLessEqual(self.browser.evaluate("document.documentElement.scrollWidth"), 400)
                # Letters of pictures, as large as they come out.
                sizes = self.browser.evaluate(
                    "[...document.querySelectorAll('svg text:not(.count)')].filter(e => e.checkVisibility())"
                    ".map(e => parseFloat(getComputedStyle(e).fontSize) * e.getScreenCTM().a"
                    " / Math.cos(Math.atan2(e.getCTM().b, e.getCTM().a)) || 12)")
                self.assertGreater(len(sizes), 20)
                self.assertGreater(min(sizes), 8.5)

    def test_texts_of_pictures_do_not_collide(self):
        for page in [self.page, self.profile, self.slices]:
            for width in [400, 1280]:
                with self.subTest(page=page, width=width):
                    self.browser.open(page, width=width)
                    collisions = self.browser.evaluate(
                        "[...document.querySelectorAll('figure svg')].filter(e => e.checkVisibility()).flatMap(svg => {"
                        " const texts = [...svg.querySelectorAll('text:not(.count)')]"
                        " .map(e => [e.textContent, e.getBoundingClientRect()]); const found = [];"
                        " texts.forEach(([a, r], i) => texts.slice(i + 1).forEach(([b, s]) => {"
                        " if (r.left < s.right - 1 && s.left < r.right - 1 && r.top < s.bottom - 4 &&"
                        " s.top < r.bottom - 4) found.push(a + ' | ' + b); })); return found; })")
                    self.assertEqual(collisions, [])

    def test_no_picture_is_cut_on_paper(self):
        for page in [self.page, self.profile, self.slices]:
            with self.subTest(page=page):
                self.check_paper(page)

    def check_paper(self, page):
        """The caption of every picture, its upper and its lower end stand on one sheet, in this order."""
        self.browser.open(page)
        # Words of the test's own at either end of each picture that is to be printed, and before its caption.
        count = self.browser.evaluate(
            "(() => { const pictures = [...document.querySelectorAll('figure > svg, .layer > svg')];"
            " pictures.forEach((svg, i) => { const box = svg.viewBox.baseVal;"
            " for (const [word, y] of [['top', 10], ['end', box.height - 2]]) {"
            " const text = document.createElementNS('http://www.w3.org/2000/svg', 'text');"
            " text.setAttribute('x', 2); text.setAttribute('y', y); text.textContent = word + i; svg.append(text); }"
            " const title = svg.parentElement.querySelector('.layer-title');"
            " if (title) title.prepend('caption' + i + ' ');"
            " const figure = svg.closest('figure'); if (figure.querySelector('svg') === svg)"
            " figure.querySelector('figcaption').prepend((title ? 'figure' : 'caption') + i + ' '); });"
            " return pictures.length; })()")
        self.assertGreater(count, 4)
        pdf = self.path("page.pdf")
        self.browser.save_pdf(pdf)
        text = subprocess.run(["pdftotext", "-bbox", pdf, "-"], check=True, capture_output=True, text=True).stdout
        found = {}  # sheet and height of each word
        for number, sheet in enumerate(text.split("<page ")[1:]):
            for y, word in re.findall(r'yMax="([\d.]+)">((?:top|end|caption|figure)\d+)<', sheet):
                self.assertNotIn(word, found)
                found[word] = (number, float(y))
        for i in range(count):
            caption, top, end = (found[word + str(i)] for word in ["caption", "top", "end"])
            self.assertEqual([caption[0], end[0]], [top[0], top[0]], f"picture {i} is cut, or apart from its caption")
            if f"figure{i}" in found:  # above the title of its first layer
                self.assertEqual(found[f"figure{i}"][0], top[0], f"picture {i} is apart from its caption")
            self.assertLess(caption[1], top[1] + 20)
            self.assertLess(top[1] + 50, end[1])
        self.assertGreater(max(sheet for sheet, _ in found.values()), 0)
        return pdf

    def test_paper_shows_both_layers(self):
        pdf = self.check_paper(self.page)
        words = subprocess.run(["pdftotext", pdf, "-"], check=True, capture_output=True, text=True).stdout
        self.assertIn("Estimate of rainfall", words)
        self.assertIn("Standard error of rainfall", words)
        self.assertNotIn("Point at the picture", words)
        images = subprocess.run(["pdfimages", "-list", pdf], check=True, capture_output=True, text=True).stdout
        self.assertEqual(len(re.findall(r"\bimage +63 +43\b", images)), 2)


if __name__ == "__main__":
    KRIGE, EXAMPLES = (os.path.abspath(path) for path in sys.argv[1:3])
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
