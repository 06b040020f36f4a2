"""Power, plug, lamps, instruments, and what the page says when the board is away."""
from conftest import Run, wait_for


def test_the_monitor_is_pulled_and_plugged_in_again(coloured, page):
    page.open(coloured.address).wait_wall()
    page.click('#plug')
    page.wait_text('#notice-title', 'The monitor is unplugged')
    assert page.request('state')['monitor']['plugged'] is False
    assert page.find('#plug').get_attribute('aria-pressed') == 'false'
    page.click('#notice-button')
    wait_for('no notice', lambda: not page.find('#notice').is_displayed())
    page.wait_wall()


def test_the_power_goes_off_and_on(coloured, page):
    page.open(coloured.address).wait_wall()
    page.click('#power')
    page.wait_text('#notice-title', 'The power is off')
    page.wait_text('#status-text', 'Power off')
    assert page.request('board')['power'] == 'off'
    page.click('#notice-button')
    page.wait_text('#status-text', 'Running')
    page.wait_wall()
    board = page.request('board')
    assert (board['starts'], board['boot_reason']) == (2, 'power')


def test_the_page_tells_that_the_program_has_ended_and_goes_on_trying(coloured, page, recorder):
    page.open(coloured.address).wait_wall()
    coloured.end()
    wait_for('a notice', lambda: page.find('#notice').is_displayed())
    page.wait_text('#notice-text', 'goes on trying')
    # The same port and another token: the page must not claim that it works again.
    second = Run(coloured.folder, coloured.arguments, ['--listen', str(coloured.port)])
    try:
        page.wait_text('#notice-title', 'no access')
        page.open(second.address).wait_wall()
        assert page.text('#status-text') == 'Running'
    finally:
        second.end()


def test_the_token_does_not_stay_in_the_address(coloured, page):
    page.open(coloured.address).wait_wall()
    assert 'token' not in page.driver.current_url
    page.driver.refresh()
    page.wait_wall()


def test_the_clock_is_taken_and_stepped(coloured, page):
    page.open(coloured.address).wait_wall()
    page.run('document.getElementById("clock-tools").querySelectorAll("button")[1].click()')
    page.wait_text('#clock-state', 'taken')
    before = page.request('state')['clock']['us']
    field = page.find('#clock-tools input')
    field.clear()
    field.send_keys('250ms\n')
    wait_for('a step', lambda: page.request('state')['clock']['us'] == before + 250000)
    field.clear()
    field.send_keys('soon\n')
    page.wait_text('#messages', '"soon" is no duration')
    page.run('document.getElementById("clock-tools").querySelectorAll("button")[0].click()')
    page.wait_text('#clock-state', 'runs')


def test_the_watchdog_lamps_and_clock_chip_are_shown(coloured, page):
    page.open(coloured.address).wait_wall()
    page.wait_text('#watchdog-text', 'of 100 s')
    assert float(page.find('#watchdog').get_attribute('aria-valuenow')) > 50
    assert page.find('[data-lamp="power"]').get_attribute('data-lit') == 'true'
    assert page.find('[data-lamp="disk"]').get_attribute('data-lit') == 'true'
    assert page.find('[data-lamp="buzzer"]').get_attribute('data-lit') == 'false'
    page.find('#chip-tools input').send_keys('2030-01-02 03:04:05\n')
    page.wait_text('#chip-time', '2030-01-02 03:04')
    page.click('#chip-tools > button')
    page.wait_text('#chip-state', 'battery failed')


def test_an_analog_cable_is_pulled(coloured, page):
    page.open(coloured.address).wait_wall()
    page.tab('inputs')
    page.click('[data-input="3"] .connector')
    wait_for('a loss', lambda: page.request('state')['analog']['inputs'][3]['lost'])
    wait_for('it is shown', lambda: page.find('[data-input="3"]').get_attribute('data-lost') == 'true')
    page.click('[data-input="5"] .motion')
    wait_for('motion', lambda: page.request('state')['analog']['inputs'][5]['moving'] == 16)
