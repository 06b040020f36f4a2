"""The board's page in a real browser: a recorder under "vboard run", and chromium without a screen.

The places of the programs and of the clips come from the environment: VBOARD_PROGRAM, NVREC_PROGRAM,
NVREC_CLIPS.
"""
import os
import re
import subprocess
import threading
import time

import pytest
from selenium import webdriver
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.by import By

PATIENCE = 30  # seconds that a machine under load is given

COLOURS = {'red': (255, 0, 0), 'lime': (0, 255, 0), 'blue': (0, 0, 255), 'yellow': (255, 255, 0)}


def wait_for(what, condition, seconds=PATIENCE):
    """Until the condition gives something true, which is returned."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            pytest.fail(f'it did not come: {what}; last: {value!r}')
        time.sleep(0.05)


class Run:
    """A recorder under "vboard run"."""

    def __init__(self, folder, arguments, options=()):
        program = [os.environ['NVREC_PROGRAM'], 'wall', '--control', 'none', '--window', 'off', '--log', '-', *arguments]
        command = [os.environ['VBOARD_PROGRAM'], 'run', '--folder', str(folder), *options, '--', *program]
        self.folder = folder
        self.arguments = arguments
        self.program = program
        self.output = []
        self.process = subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                        text=True, errors='replace')
        threading.Thread(target=self._read, daemon=True).start()
        self.address = wait_for('the page\'s address', self._address)
        self.port = int(re.search(r':(\d+)/', self.address).group(1))

    def _read(self):
        for line in self.process.stdout:
            self.output.append(line)

    def _address(self):
        assert self.process.poll() is None, ''.join(self.output)
        return next((m.group(1) for line in list(self.output) if (m := re.search(r'page is (http://\S+)', line))), None)

    def log(self):
        return ''.join(self.output)

    def end(self):
        self.process.terminate()
        try:
            self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise


@pytest.fixture
def recorder(tmp_path):
    """recorder(clips..., options=[...]): start one; all are ended behind the test."""
    runs = []

    def start(*arguments, options=()):
        clips = os.environ['NVREC_CLIPS']
        arguments = [os.path.join(clips, one) if one.endswith(('.h264', '.h265', '.mp4')) else one for one in arguments]
        runs.append(Run(tmp_path, arguments, options))
        return runs[-1]

    yield start
    for run in runs:
        if run.process.poll() is None:
            run.end()


@pytest.fixture
def coloured(recorder):
    """Four cameras that see one colour each, 2x2."""
    return recorder('--loop', '--layout', '2x2', 'colour0.h264', 'colour1.h264', 'colour2.h264', 'colour3.h264')


class Page:
    def __init__(self, driver):
        self.driver = driver

    def open(self, address):
        self.driver.get(address)
        return self

    def resize(self, width, height):
        self.driver.execute_cdp_cmd('Emulation.setDeviceMetricsOverride',
                                    {'width': width, 'height': height, 'deviceScaleFactor': 1, 'mobile': False})

    def prefer(self, theme):
        self.driver.execute_cdp_cmd('Emulation.setEmulatedMedia',
                                    {'features': [{'name': 'prefers-color-scheme', 'value': theme}]})

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def text(self, selector):
        return self.find(selector).text

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def click(self, selector):
        self.find(selector).click()

    def tab(self, name):
        self.click(f'#tab-{name}')

    def wait_text(self, selector, part, seconds=PATIENCE):
        wait_for(f'"{part}" in {selector}', lambda: part in self.text(selector), seconds)

    def pixel(self, x, y):
        """Colour of the screen at a part of its width and height."""
        return self.run('''const c = document.getElementById("screen");
            return [...c.getContext("2d").getImageData(arguments[0] * c.width, arguments[1] * c.height, 1, 1).data].slice(0, 3)''', x, y)

    def shows(self, x, y, colour):
        return all(abs(a - b) < 60 for a, b in zip(self.pixel(x, y), COLOURS[colour]))

    def panes(self):
        """Colours of the four quarters of the screen."""
        places = [(.25, .25), (.75, .25), (.25, .75), (.75, .75)]
        return [next((c for c in COLOURS if self.shows(x, y, c)), None) for x, y in places]

    def wait_panes(self, *colours, seconds=PATIENCE):
        wait_for(f'panes {colours}', lambda: self.panes() == list(colours) or None, seconds)

    def wait_wall(self):
        self.wait_panes('red', 'lime', 'blue', 'yellow')

    def fingerprint(self):
        return self.run('''const c = document.getElementById("screen");
            const data = c.getContext("2d").getImageData(0, 0, c.width, c.height).data;
            let sum = 0;
            for (let i = 0; i < data.length; i += 4) sum = (sum * 31 + data[i]) >>> 0;
            return sum''')

    def request(self, name, parameters=None):
        """A request as the page makes it: what the board itself says."""
        return self.driver.execute_async_script('''const done = arguments[arguments.length - 1];
            import("/api.js").then((api) => api.request(arguments[0], arguments[1] || {})).then(done, (e) => done({failed: String(e)}))''',
                                                name, parameters)

    def errors(self):
        return [entry['message'] for entry in self.driver.get_log('browser')
                if entry['level'] == 'SEVERE' and 'Failed to load resource' not in entry['message']
                and 'WebSocket connection' not in entry['message']]


@pytest.fixture
def page(tmp_path):
    options = webdriver.ChromeOptions()
    for argument in ('--headless=new', '--no-sandbox', '--disable-dev-shm-usage', '--disable-gpu', '--no-first-run',
                     f'--user-data-dir={tmp_path / "browser"}', '--window-size=1280,800'):
        options.add_argument(argument)
    options.set_capability('goog:loggingPrefs', {'browser': 'ALL'})
    driver = webdriver.Chrome(service=Service('/usr/bin/chromedriver'), options=options)
    driver.set_script_timeout(PATIENCE)
    one = Page(driver)
    one.resize(1280, 800)
    yield one
    errors = one.errors()
    driver.quit()
    assert errors == [], 'the browser complained'
