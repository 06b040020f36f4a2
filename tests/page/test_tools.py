"""Streams, calls, faults, and the recording of scenarios."""
import os
import subprocess

from conftest import wait_for
from selenium.webdriver.common.keys import Keys

FAULTY = 'MI_DISP_SetInputPortAttr'


def set_fault(page, call):
    page.tab('faults')
    field = page.find('#fault-call')
    field.clear()
    field.send_keys(call)
    page.click('.fault-form button')


def test_streams_show_rate_and_backlog(recorder, page):
    page.open(recorder('--loop', '--layout', '2x2', 'h264.mp4', 'plain.h264').address)
    page.tab('streams')
    rate = lambda: page.all('.streams table:first-of-type tbody td:nth-child(4)')[0].text
    wait_for('a rate near 30 a second', lambda: page.all('.streams tbody tr') and rate() != '–' and 20 < float(rate()) < 40)
    page.click('.unfold')
    page.wait_text('.more', 'Recreated')


def test_a_fault_set_on_the_page_is_in_the_calls_and_can_be_taken_back(coloured, page):
    page.open(coloured.address).wait_wall()
    set_fault(page, FAULTY)
    page.wait_text('.faults tbody', FAULTY)
    page.tab('calls')
    page.click('#calls-failed')
    page.click('[data-kind="panel"][data-key="2"]')
    page.wait_text('#calls', FAULTY)
    page.run('document.querySelector("#calls .call").click()')
    page.wait_text('.call-fields', 'result')
    page.tab('faults')
    wait_for('one call failed', lambda: page.request('state')['faults']['fired'] >= 1)
    page.click('.faults tbody button')
    page.wait_text('.faults .empty', 'No call is made to fail.')
    assert page.request('state')['faults']['list'] == []


def test_a_misspelt_fault_is_refused_in_the_boards_own_words(coloured, page):
    page.open(coloured.address).wait_wall()
    set_fault(page, 'MI_DISP_SetInputPortAtr')
    page.wait_text('#messages', 'no platform call is named "MI_DISP_SetInputPortAtr"')
    assert page.request('state')['faults']['refused'] == 1


def test_names_of_calls_are_completed(coloured, page):
    page.open(coloured.address).wait_wall()
    wait_for('names', lambda: page.run('return document.querySelectorAll("#fault-calls option").length') > 50)


def test_calls_are_filtered_by_name_and_channel_and_held(coloured, page):
    page.open(coloured.address).wait_wall()
    page.tab('calls')
    page.find('.filters input[type="search"]').send_keys('SendStream')
    page.find('.filters input[type="number"]').send_keys('2')
    wait_for('calls', lambda: len(page.all('#calls .call')) > 5)
    rows = page.run('''return [...document.querySelectorAll("#calls .call")].map((row) =>
        [row.querySelector(".call-name").textContent, row.querySelector(".call-channel").textContent])''')
    assert {tuple(row) for row in rows} == {('MI_VDEC_SendStream', '2')}
    page.run('document.querySelector("#calls .call").click()')  # unfolding holds the list
    count = lambda: page.run('return document.querySelector("#calls .call-time").textContent')
    first = count()
    page.run('return new Promise((done) => setTimeout(done, 1500))')
    assert count() == first
    fields = page.text('.call-fields')
    assert 'length' in fields and 'crc32' in fields and 'thread' in fields


def test_what_was_done_becomes_a_scenario_that_holds(coloured, page):
    page.open(coloured.address).wait_wall()
    page.tab('scenario')
    file = page.find('.scenario input')
    file.send_keys(Keys.CONTROL, 'a')
    file.send_keys('done.yaml')
    page.click('.scenario button')
    wait_for('recording', lambda: page.request('board')['recording'])
    page.click('[data-kind="panel"][data-key="2"]')
    page.wait_panes('lime', 'lime', 'lime', 'lime')
    page.click('#mark-start')
    page.click('#mark-fields button')
    page.wait_text('#messages', 'Expected from now on')
    page.wait_text('.scenario-lines', 'panel')
    page.click('#record')
    page.wait_text('#messages', 'steps')
    scenario = coloured.folder / 'done.yaml'
    text = scenario.read_text()
    assert 'panel' in text and 'region' in text
    command = page.text('#scenario-command')
    assert 'done.yaml -- ' in command and 'nvrec' in command
    coloured.end()
    again = subprocess.run([os.environ['VBOARD_PROGRAM'], 'test', str(scenario), '--', *coloured.program],
                           cwd=coloured.folder, capture_output=True, text=True, timeout=120)
    assert again.returncode == 0, again.stdout + again.stderr
