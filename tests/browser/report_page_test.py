"""The page of `qrx report` in a browser: sorting, filtering, themes, no network, no errors."""

import os
import re
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import browser_case  # noqa: E402
import qrx_case  # noqa: E402
from qrx_case import NO_FFMPEG  # noqa: E402
import cards  # noqa: E402
from selenium.webdriver.common.by import By  # noqa: E402
from selenium.webdriver.common.keys import Keys  # noqa: E402

NAMES = """return [...document.querySelectorAll('table.clips')[arguments[0] ?? 0]
    .querySelectorAll('tbody:not([hidden]) tr.clip th bdi')].map((each) => each.textContent)"""


class ReportPage(browser_case.BrowserCase):
    def report(self, *arguments, name="report.html"):
        self.run_qrx("report", "-o", name, *arguments, timeout=300)
        return self.folder / name

    def eos_card(self, sizes, card="card"):
        """Clips whose order of recording, by name and by size differ."""
        for number, size in enumerate(sizes, 1):
            self.write(f"{card}/DCIM/100CANON/MVI_{number:04}.MOV", b"x" * size)
        return card

    def names(self, table=0):
        return [int(re.sub(r"\D", "", name)) for name in self.run_script(NAMES, table)]

    def header(self, text):
        (found,) = [each for each in self.driver.find_elements(
            By.CSS_SELECTOR, "table.clips thead th") if each.text.startswith(text)]
        return found

    def filter(self, text):
        field = self.driver.find_element(By.ID, "find")
        field.clear()
        field.send_keys(text)
        # What is shown follows in the next frame.
        self.driver.execute_async_script(
            "const done = arguments[0]; requestAnimationFrame(() => requestAnimationFrame(done))")

    def shown(self):
        return self.driver.find_element(By.ID, "shown").text

    def assert_quiet(self):
        self.assertEqual(self.complaints(), [])
        self.assertEqual(self.requests(), [])

    # -- sorting ----------------------------------------------------------------------------

    def test_click_on_a_head_sorts_and_says_so(self):
        self.open(self.report(self.eos_card([30, 10, 20]), "--ffmpeg", NO_FFMPEG))
        self.assertEqual(self.names(), [1, 2, 3])
        size = self.header("Size")
        self.assertEqual(size.get_attribute("aria-sort"), "none")
        self.assertEqual(self.header("No.").get_attribute("aria-sort"), "ascending")
        size.find_element(By.TAG_NAME, "button").click()
        self.assertEqual(self.names(), [2, 3, 1])
        self.assertEqual(size.get_attribute("aria-sort"), "ascending")
        self.assertEqual(self.header("No.").get_attribute("aria-sort"), "none")
        size.find_element(By.TAG_NAME, "button").click()
        self.assertEqual(self.names(), [1, 3, 2])
        self.assertEqual(size.get_attribute("aria-sort"), "descending")
        self.header("No.").find_element(By.TAG_NAME, "button").click()
        self.assertEqual(self.names(), [1, 2, 3])
        self.assert_quiet()

    def test_keyboard_sorts_and_keeps_the_focus(self):
        self.open(self.report(self.eos_card([30, 10, 20]), "--ffmpeg", NO_FFMPEG))
        button = self.header("Size").find_element(By.TAG_NAME, "button")
        self.run_script("document.getElementById('flagged').focus()")
        for _ in range(40):
            self.driver.switch_to.active_element.send_keys(Keys.TAB)
            if self.driver.switch_to.active_element == button:
                break
        self.assertEqual(self.driver.switch_to.active_element, button)
        outline = self.run_script("return getComputedStyle(document.activeElement).outlineStyle")
        self.assertEqual(outline, "solid")
        button.send_keys(Keys.ENTER)
        self.assertEqual(self.names(), [2, 3, 1])
        button.send_keys(Keys.SPACE)
        self.assertEqual(self.names(), [1, 3, 2])
        self.assertEqual(self.driver.switch_to.active_element, button)

    def test_what_is_not_known_stays_at_the_end(self):
        self.eos_card([5, 5])
        self.write("card/DCIM/100CANON/MVI_0003.MOV", b"")
        os.remove(self.folder / "card/DCIM/100CANON/MVI_0002.MOV")
        os.mkfifo(self.folder / "card/DCIM/100CANON/MVI_0002.MOV")  # a size that is not known
        self.open(self.report("card", "--ffmpeg", NO_FFMPEG))
        button = self.header("Size").find_element(By.TAG_NAME, "button")
        button.click()
        self.assertEqual(self.names(), [3, 1, 2])
        button.click()
        self.assertEqual(self.names(), [1, 3, 2])

    def test_pieces_of_a_recording_stay_together(self):
        cards.ex_segments(self, take="632_0002", pieces=(1, 3))
        cards.ex_segments(self, take="632_0001", pieces=(1,))
        self.open(self.report("ex", "--ffmpeg", NO_FFMPEG))
        self.header("Clip").find_element(By.TAG_NAME, "button").click()
        self.header("Clip").find_element(By.TAG_NAME, "button").click()
        body = self.driver.find_element(By.CSS_SELECTOR, "tbody.series")
        rows = [row.text.split("\n")[0] for row in body.find_elements(By.TAG_NAME, "tr")]
        self.assertEqual(len(rows), 4)
        self.assertIn("Spanned recording 632_0002 · 2 pieces · 1 missing", rows[0])
        self.assertIn("632_0002_02", rows[2])

    # -- filtering --------------------------------------------------------------------------

    def test_filter_shows_what_matches_and_tells_the_number(self):
        self.eos_card([1, 2, 3])
        cards.ex_segments(self, pieces=(1, 3))
        self.open(self.report("card", "ex", "--ffmpeg", NO_FFMPEG))
        self.assertEqual(self.shown(), "5 clips")
        region = self.driver.find_element(By.ID, "shown")
        self.assertEqual(region.get_attribute("role"), "status")
        self.assertEqual(region.get_attribute("aria-live"), "polite")
        self.filter("mvi_0002")
        self.assertEqual(self.shown(), "1 of 5 clips shown")
        self.assertEqual(self.names(0), [2])
        self.assertFalse(self.driver.find_element(By.ID, "card-2").is_displayed())
        self.filter("632_0001_02")  # the missing piece brings its recording
        self.assertEqual(self.shown(), "2 of 5 clips shown")
        self.filter("nothing has this")
        self.assertEqual(self.shown(), "0 of 5 clips shown")
        self.filter("")
        self.driver.find_element(By.ID, "flagged").click()
        self.filter("")
        self.assertEqual(self.shown(), "2 of 5 clips shown")
        self.driver.find_element(By.ID, "flagged").click()
        self.run_script("""const layout = document.getElementById('layout');
            layout.value = 'Canon EOS';
            layout.dispatchEvent(new Event('input', {bubbles: true}));""")
        self.filter("")
        self.assertEqual(self.shown(), "3 of 5 clips shown")
        self.assert_quiet()

    # -- looks ------------------------------------------------------------------------------

    def background(self):
        colour = self.run_script("return getComputedStyle(document.body).backgroundColor")
        return sum(int(part) for part in re.findall(r"\d+", colour)[:3])

    def contrast(self, selector):
        return self.run_script("""
            const light = (text) => {
              const [r, g, b] = text.match(/[\\d.]+/g).map(Number).map((v) => v / 255)
                .map((v) => (v <= 0.03928 ? v / 12.92 : ((v + 0.055) / 1.055) ** 2.4));
              return 0.2126 * r + 0.7152 * g + 0.0722 * b;
            };
            const element = document.querySelector(arguments[0]);
            let behind = element;
            while (/rgba\\(.*, 0\\)/.test(getComputedStyle(behind).backgroundColor)) {
              behind = behind.parentElement;
            }
            const a = light(getComputedStyle(element).color);
            const b = light(getComputedStyle(behind).backgroundColor);
            return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);""", selector)

    def test_light_and_dark_follow_the_reader(self):
        cards.ex_segments(self, pieces=(1, 3))
        self.sony_card()
        page = self.report("ex", "card", "--ffmpeg", NO_FFMPEG)
        for dark in (False, True):
            with self.subTest(dark=dark):
                self.open(page, dark=dark)
                if dark:
                    self.assertLess(self.background(), 120)
                else:
                    self.assertGreater(self.background(), 660)
                for what in ("h1", ".quiet", ".badge", ".missing th", "caption span", "thead th",
                             ".series-head span", "footer p", ".totals a", "small"):
                    self.assertGreaterEqual(self.contrast(what), 4.5, what)
                self.assert_quiet()
                self.driver.quit()

    def test_phone_scrolls_tables_and_not_the_page(self):
        self.open(self.report(self.eos_card([1, 2]), "--ffmpeg", NO_FFMPEG))
        self.command("Emulation.setDeviceMetricsOverride", width=390, height=844,
                     deviceScaleFactor=2, mobile=True)
        wide, seen = self.run_script(
            "return [document.documentElement.scrollWidth, document.documentElement.clientWidth]")
        self.assertLessEqual(wide, seen)
        self.assertEqual(self.run_script(
            "return document.querySelector('.layout .scroll').tabIndex"), 0)

    def test_print_repeats_heads_and_drops_controls(self):
        self.eos_card([n + 1 for n in range(60)])
        self.open(self.report("card", "--ffmpeg", NO_FFMPEG))
        with open(self.folder / "page.pdf", "wb") as file:
            file.write(self.printed())
        text = subprocess.run(["pdftotext", "-layout", self.folder / "page.pdf", "-"], check=True,
                              capture_output=True, text=True).stdout
        pages = [page for page in text.split("\f") if "MVI_" in page]
        self.assertGreater(len(pages), 1)
        for page in pages:
            self.assertIn("Timecode in", page)
        self.assertEqual(len(re.findall(r"MVI_\d{4}\.MOV", text)), 60)
        self.assertNotIn("only with a problem", text)
        self.assertNotIn("Skip to the clips", text)

    # -- harm -------------------------------------------------------------------------------

    def test_names_with_markup_stay_text(self):
        names = ["<img src=x onerror=\"document.title='owned'\">.MOV",
                 "<script>document.title='owned'<∕script>.MOV", "{{script}}.MOV",
                 "<a href=http:∕∕127.0.0.1>.MOV"]
        for name in names:
            self.write(f"card/DCIM/100CANON/{name}", b"x")
        self.write("<svg onload=alert(1)>.xyz", b"x")
        self.open(self.report(".", "--ffmpeg", NO_FFMPEG))
        self.assertEqual(sorted(self.run_script(NAMES)), sorted(names))
        self.assertTrue(self.driver.title.startswith("Camera report"))
        self.assertEqual(self.run_script(
            "return document.querySelectorAll('img, svg, script[src], a[href^=http]').length"), 0)
        self.filter("<img")
        self.assertEqual(self.shown(), "1 of 4 clips shown")
        self.assert_quiet()

    def test_policy_stops_what_would_get_through(self):
        path = self.report(self.eos_card([1]), "--ffmpeg", NO_FFMPEG)
        text = path.read_text(encoding="utf-8")
        harm = ("<img src='http://127.0.0.1:9/x.png'><b onclick='document.title=1' id=harm>x</b>"
                "<script>document.title = 'owned'</script>"
                "<style>body { color: red }</style>")
        (self.folder / "harmed.html").write_text(text.replace("<header>", harm + "<header>", 1),
                                                 encoding="utf-8")
        self.open(self.folder / "harmed.html")
        self.driver.find_element(By.ID, "harm").click()
        self.assertTrue(self.driver.title.startswith("Camera report"))
        self.assertNotEqual(self.run_script("return getComputedStyle(document.body).color"),
                            "rgb(255, 0, 0)")
        self.assertTrue(any("Content Security Policy" in each for each in self.complaints()))
        self.assertEqual(self.names(), [1])  # the page's own script still runs
        self.assertEqual(self.shown(), "1 clip")

    # -- posters, and no script -------------------------------------------------------------

    def test_posters_are_shown_and_nothing_is_loaded(self):
        self.run_qrx("mkcard", "gopro", "gopro", timeout=300)
        self.open(self.report("gopro"))
        sizes = self.driver.execute_async_script("""
            const done = arguments[0];
            const images = [...document.images];
            Promise.all(images.map((each) => { each.loading = 'eager'; return each.decode(); }))
              .then(() => done(images.map((each) => [each.naturalWidth, each.alt])),
                    (fault) => done(String(fault)));""")
        self.assertEqual(sizes, [[240, f"Poster of GOPR{n:04}.MP4"] for n in (1, 2, 3)])
        self.assert_quiet()

    def test_page_is_whole_without_script(self):
        self.open(self.report(self.eos_card([30, 10, 20]), "--ffmpeg", NO_FFMPEG), script=False)
        text = self.driver.find_element(By.TAG_NAME, "body").text
        for number in (1, 2, 3):
            self.assertIn(f"MVI_{number:04}.MOV", text)
        self.assertNotIn("only with a problem", text)
        self.assertEqual(self.driver.find_elements(By.TAG_NAME, "button"), [])

    # -- many clips -------------------------------------------------------------------------

    def metrics(self):
        return {each["name"]: each["value"]
                for each in self.command("Performance.getMetrics")["metrics"]}

    def test_two_thousand_clips_cost_a_bounded_number_of_layouts(self):
        self.eos_card([n % 97 + 1 for n in range(2000)])
        self.open(self.report("card", "--ffmpeg", NO_FFMPEG))
        self.command("Performance.enable")
        self.assertEqual(self.shown(), "2,000 clips")
        before = self.metrics()
        self.assertLess(before["Nodes"], 2000 * 60)
        self.run_script("""
            const button = [...document.querySelectorAll('thead button')]
              .find((each) => each.textContent === 'Size');
            button.click(); void document.body.offsetHeight;
            button.click(); void document.body.offsetHeight;""")
        sorted_ = self.metrics()
        self.assertEqual(len(self.names()), 2000)
        self.assertLessEqual(sorted_["LayoutCount"] - before["LayoutCount"], 6)
        # Listeners are on the page, not on the rows.
        self.assertLess(before["JSEventListeners"], 40)
        before = self.metrics()
        self.run_script("""
            const find = document.getElementById('find');
            for (const text of ['m', 'mv', 'mvi_19', 'mvi_199']) {
              find.value = text;
              find.dispatchEvent(new Event('input', {bubbles: true}));
            }""")
        self.filter("mvi_199")
        self.assertEqual(self.shown(), "10 of 2,000 clips shown")
        self.assertLessEqual(self.metrics()["LayoutCount"] - before["LayoutCount"], 40)
        self.assert_quiet()


if __name__ == "__main__":
    qrx_case.main()
