/*
 * main.js - puts the page together. Each part looks after itself: it listens to the board's state and
 * sends its requests.
 */
import {connect} from './api.js';
import {by_id} from './dom.js';
import {calls_panel, hold_calls, show_calls} from './calls.js';
import {init_clock, picture_on, step_once, take_or_release} from './clock.js';
import {faults_panel} from './faults.js';
import {init_front} from './front.js';
import {init_help} from './help.js';
import {inputs_panel} from './inputs.js';
import {init_instruments} from './instruments.js';
import {init_keys, remote_controls} from './keys.js';
import {init_marking, toggle_marking} from './marking.js';
import {init_messages} from './messages.js';
import {scenario_panel, toggle_recording} from './scenario.js';
import {init_screen} from './screen.js';
import {init_status} from './status.js';
import {streams_panel} from './streams.js';
import {add_tab, init_tabs, open_tab} from './tabs.js';
import {init_theme, switch_theme} from './theme.js';

init_theme();
init_messages();
init_status();
init_screen();
init_front();
init_keys();
init_clock();
init_instruments();
add_tab('remote', 'Remote', remote_controls());
add_tab('streams', 'Streams', streams_panel());
add_tab('calls', 'Calls', calls_panel(), show_calls);
add_tab('faults', 'Faults', faults_panel());
add_tab('inputs', 'Inputs', inputs_panel());
add_tab('scenario', 'Scenario', scenario_panel());
init_marking();
init_tabs();
init_help([
  {key: 's', about: 'the screen gets the focus', run: () => by_id('screen').focus()},
  ...['Remote', 'Streams', 'Calls', 'Faults', 'Inputs', 'Scenario'].map((title, index) =>
    ({key: String(index + 1), about: title, run: () => open_tab(index, true)})),
  {key: 'm', about: 'mark a part of the screen', run: toggle_marking},
  {key: 'r', about: 'record a scenario, stop it', run: toggle_recording},
  {key: 'c', about: 'take the clock, let it run', run: take_or_release},
  {key: '.', about: 'step the clock', run: step_once},
  {key: 'n', about: 'next picture', run: picture_on},
  {key: 'p', about: 'hold the list of calls, go on', run: hold_calls},
  {key: 't', about: 'dark or light', run: switch_theme},
]);
connect();
