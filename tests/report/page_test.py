"""Looks at a report page in headless Chromium: page_test.py DBSERVICE SCRATCH [PICTURES]

With PICTURES it also leaves pictures of the page there, narrow and wide, light and dark.
"""

import json
import pathlib
import shutil
import subprocess
import sys

from selenium import webdriver
from selenium.webdriver.common.by import By

HOSTILE = ["<img src=x onerror=alert(1)>", "</script><script>alert(2)</script>", "a\"b'c&amp;", "\u202egnp.exe"]

CONTRAST = """
const channel = value => value <= 0.04045 * 255 ? value / 255 / 12.92 : ((value / 255 + 0.055) / 1.055) ** 2.4;
const luminance = colour => {
  const [red, green, blue] = colour.match(/[0-9.]+/g).map(Number).map(channel);
  return 0.2126 * red + 0.7152 * green + 0.0722 * blue;
};
const ground = element => {
  for (; element; element = element.parentElement) {
    const colour = getComputedStyle(element).backgroundColor;
    if (!/, 0\\)$/.test(colour)) return colour;
  }
  return "rgb(255, 255, 255)";
};
return [...document.querySelectorAll("body *")].filter(element =>
    element.offsetParent && [...element.childNodes].some(node => node.nodeType === 3 && node.data.trim())).map(element => {
  const [one, other] = [luminance(getComputedStyle(element).color), luminance(ground(element))];
  return [(Math.max(one, other) + 0.05) / (Math.min(one, other) + 0.05), element.outerHTML.slice(0, 80)];
}).filter(([ratio]) => ratio < 4.5);
"""


def make_page(tool, scratch):
    shutil.rmtree(scratch, ignore_errors=True)
    source = scratch / "source"
    for name, size in (("large/deep/a.bin", 300_000), ("large/b.jpg", 50_000), ("small/c.txt", 900)):
        (source / name).parent.mkdir(parents=True, exist_ok=True)
        (source / name).write_bytes(b"x" * size)
    run = lambda *arguments: subprocess.run([tool, "--folder", scratch / "store", *arguments], check=True,
                                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    run("scan", source)
    for name in HOSTILE:
        run("mkdir", "/small/" + name.replace("/", "|"))
    run("rename", "/small/c.txt", "<b>c.txt")
    run("report", scratch / "report.html")
    return scratch / "report.html"


def open_browser(width, dark):
    options = webdriver.ChromeOptions()
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", f"--window-size={width},900"):
        options.add_argument(argument)
    options.add_argument("--blink-settings=preferredColorScheme=" + ("0" if dark else "1"))
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(options=options)


def tiles(browser):
    return browser.find_elements(By.CSS_SELECTOR, "#map button")


def check(page, width, dark, pictures):
    browser = open_browser(width, dark)
    try:
        browser.get(page.as_uri())
        data = json.loads(browser.find_element(By.ID, "entries").get_attribute("textContent"))
        for entry, whole in enumerate(data["bytes"]):
            parts = [data["bytes"][i] for i, parent in enumerate(data["parent"]) if parent == entry]
            assert not parts or sum(parts) == whole, f"the sizes in {data['name'][entry]} do not add up"
        assert data["bytes"][0] == 350_900, data["bytes"][0]

        area = sum(tile.size["width"] * tile.size["height"] for tile in tiles(browser))
        map_size = browser.find_element(By.ID, "map").size
        assert abs(area / (map_size["width"] * map_size["height"]) - 1) < 0.05, "the tiles do not fill the map"
        large = next(tile for tile in tiles(browser) if tile.text.startswith("large"))
        large.click()
        assert [tile.text.split()[0] for tile in tiles(browser)] == ["deep", "b.jpg"]
        assert "top" in browser.find_element(By.ID, "way").text
        browser.find_element(By.CSS_SELECTOR, "#way button").click()
        assert any(tile.text.startswith("large") for tile in tiles(browser))

        assert not browser.find_elements(By.CSS_SELECTOR, "img, td b, iframe, link")
        assert "<img src=x onerror=alert(1)>" in browser.find_element(By.TAG_NAME, "main").text
        pale = browser.execute_script(CONTRAST)
        assert not pale, pale
        overflow = browser.execute_script("return document.documentElement.scrollWidth - innerWidth")
        assert overflow <= 0, f"{overflow} pixels too wide at {width}"
        told = [line for line in browser.get_log("browser") if line["level"] != "INFO"]
        assert not told, told
        if pictures:
            height = browser.execute_script("return document.documentElement.scrollHeight")
            browser.set_window_size(width, height + 150)
            browser.save_screenshot(str(pictures / f"report-{width}-{'dark' if dark else 'light'}.png"))
    finally:
        browser.quit()


def main():
    tool, scratch = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    pictures = pathlib.Path(sys.argv[3]).resolve() if len(sys.argv) > 3 else None
    page = make_page(tool, scratch)
    for width, dark in ((1280, False), (520, True), *(((1280, True), (520, False)) if pictures else ())):
        check(page, width, dark, pictures)
    print("the page holds: sizes, walk, names, contrast, width")


main()
