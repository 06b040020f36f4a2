"""How the page lies on the screen, and whether it can be used without a mouse."""
import pytest
from conftest import wait_for
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.keys import Keys

TABS = ('remote', 'streams', 'calls', 'faults', 'inputs', 'scenario')

OVERLAPPING = '''
const shown = [...document.querySelectorAll('button, input, .clock-time, .chip-time, .tag, #clock-wall, .program, .bezel-facts')]
    .filter((e) => e.checkVisibility() && !e.closest('dialog') && !e.closest('.notice')
        && !e.closest('.scroll') && !e.closest('.tab-panel'));
const out = [];
shown.forEach((a, i) => shown.slice(i + 1).forEach((b) => {
    if (a.contains(b) || b.contains(a)) return;
    const p = a.getBoundingClientRect(), q = b.getBoundingClientRect();
    const w = Math.min(p.right, q.right) - Math.max(p.left, q.left), h = Math.min(p.bottom, q.bottom) - Math.max(p.top, q.top);
    if (w > 1.5 && h > 1.5) out.push(`${a.id || a.className || a.tagName} / ${b.id || b.className || b.tagName}`);
}));
return out'''

# Contrast of every text with what lies behind it, by the rule of WCAG 2; gradients count with each of their colours.
LOW_CONTRAST = '''
const linear = (c) => (c /= 255) <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4;
const light = ([r, g, b]) => 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
const parse = (text) => (text.match(/rgba?\\([^)]*\\)/g) || []).map((c) => c.match(/[\\d.]+/g).map(Number));
const behind = (e) => {
    for (; e; e = e.parentElement) {
        const style = getComputedStyle(e);
        const gradient = parse(style.backgroundImage).filter((c) => c.length < 4 || c[3] === 1);
        if (gradient.length) return gradient;
        const [plain] = parse(style.backgroundColor);
        if (plain && (plain.length < 4 || plain[3] > 0.8)) return [plain];
    }
    return [[255, 255, 255]];
};
const out = new Set();
for (const e of document.querySelectorAll('body *')) {
    if (!e.checkVisibility() || e.closest('svg') || e.closest('.only-spoken') || e.matches(':disabled')) continue;
    if (![...e.childNodes].some((n) => n.nodeType === 3 && n.textContent.trim())) continue;
    const [ink] = parse(getComputedStyle(e).color);
    for (const paper of behind(e)) {
        const a = light(ink), b = light(paper);
        const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
        if (contrast < 4.5) out.add(`${e.id || e.className || e.tagName} "${e.textContent.slice(0, 20)}" ${contrast.toFixed(2)}`);
    }
}
return [...out]'''


@pytest.mark.parametrize('theme', ['dark', 'light'])
def test_everything_has_its_place_and_can_be_read(coloured, page, theme):
    page.prefer(theme)
    page.open(coloured.address).wait_wall()
    for width, height in ((1280, 800), (1920, 1080), (1440, 900)):
        page.resize(width, height)
        for tab in TABS:
            page.tab(tab)
            assert page.run('return document.documentElement.scrollWidth <= innerWidth'), (width, tab)
            assert page.run('return [...document.querySelectorAll(".tab-panel")].every((e) => e.scrollWidth <= e.clientWidth)'), (width, tab)
            assert page.run(OVERLAPPING) == [], (width, tab)
            assert page.run(LOW_CONTRAST) == [], (width, tab)
    page.resize(1280, 800)
    assert page.run('return document.documentElement.scrollHeight <= innerHeight')


def test_the_switch_changes_dark_and_light(coloured, page):
    page.prefer('dark')
    page.open(coloured.address)
    paper = lambda: page.run('return getComputedStyle(document.body).backgroundColor')
    dark = paper()
    page.click('#theme')
    assert paper() != dark
    page.driver.refresh()
    assert paper() != dark
    page.click('#theme')
    assert paper() == dark


def test_every_control_is_reached_by_the_tabulator_and_seen_to_have_the_focus(coloured, page):
    page.open(coloured.address).wait_wall()
    wanted = page.run('''let n = 0;
        for (const e of document.querySelectorAll('button, input, canvas, [tabindex="0"]'))
            if (e.checkVisibility() && !e.disabled && e.tabIndex >= 0) e.dataset.wanted = ++n;
        return n''')
    reached = set()
    for _ in range(wanted + 10):
        ActionChains(page.driver).send_keys(Keys.TAB).perform()
        number, outline = page.run('''const e = document.activeElement;
            return [e.dataset.wanted || null, getComputedStyle(e).outlineStyle]''')
        if number:
            reached.add(number)
            assert outline != 'none', page.run('return document.activeElement.outerHTML')
    assert len(reached) == wanted


def test_shortcuts_work_and_are_listed(coloured, page):
    page.open(coloured.address).wait_wall()
    body = page.find('body')
    body.send_keys('?')
    wait_for('the list', lambda: page.find('#help-dialog').is_displayed())
    assert 'the screen gets the focus' in page.text('#help-dialog')
    ActionChains(page.driver).send_keys(Keys.ESCAPE).perform()
    wait_for('the list is closed', lambda: not page.find('#help-dialog').is_displayed())
    ActionChains(page.driver).send_keys('3').perform()
    assert page.find('#panel-calls').is_displayed()
    ActionChains(page.driver).send_keys('s').perform()
    assert page.run('return document.activeElement.id') == 'screen'
    ActionChains(page.driver).send_keys('4').perform()  # now a key of the remote control
    page.wait_panes('yellow', 'yellow', 'yellow', 'yellow')
    assert page.find('#panel-calls').is_displayed()
