/*
 * inputs.js - the analog inputs, four chips of four: pull their cables, move something before their cameras.
 */
import {on} from './api.js';
import {act} from './messages.js';
import {make, set_attribute, set_text} from './dom.js';
import {icon} from './icons.js';

const kInputs = 16;
const kPerChip = 4;
const kBlocks = 16; // that move when the button is pressed

export function inputs_panel() {
  let inputs = [];
  const tiles = Array.from({length: kInputs}, (_, input) => {
    const cable = make('button', {class: 'connector', type: 'button', onclick: () => act('analog', {input, lost: !inputs[input]?.lost})},
      make('i'), make('span', {}, 'signal'));
    const motion = make('button', {class: 'motion', type: 'button', onclick: () => act('analog', {input, moving: inputs[input]?.moving ? 0 : kBlocks})},
      icon('motion'), make('span', {}, 'still'));
    const facts = make('p', {class: 'input-facts figures'});
    const tile = make('section', {class: 'input', 'aria-label': `Input ${input}`, 'data-input': input}, make('h4', {}, String(input)), cable, motion, facts);
    return {tile, cable, motion, facts};
  });
  const facts = make('p', {class: 'small figures'});

  const update = (analog) => {
    inputs = analog?.inputs || [];
    tiles.forEach(({cable, motion, facts: line, tile}, number) => {
      const input = inputs[number];
      const lost = Boolean(input?.lost);
      const moving = input?.moving || 0;
      set_attribute(tile, 'data-lost', lost);
      set_attribute(cable, 'aria-pressed', !lost);
      set_attribute(cable, 'aria-label', `Input ${number}: ${lost ? 'cable pulled' : 'cable in'}`);
      set_attribute(cable, 'title', lost ? 'Put the cable back' : 'Pull the cable');
      set_text(cable.lastElementChild, lost ? 'lost' : 'signal');
      set_attribute(motion, 'aria-pressed', moving > 0);
      set_attribute(motion, 'aria-label', `Input ${number}: ${moving ? `${moving} blocks move` : 'nothing moves'}`);
      set_attribute(motion, 'title', moving ? 'Let it stand still' : `Let ${kBlocks} blocks move`);
      set_text(motion.lastElementChild, moving ? `${moving}` : 'still');
      cable.disabled = motion.disabled = !input;
      set_attribute(tile, 'title', input ? `mode ${input.mode}, sensitivity ${input.sensitivity}, watched blocks 0x${input.area_bits.toString(16)}` : '');
      set_text(line, input ? `mode ${input.mode}` : '');
    });
    set_text(facts, analog ? `Norm ${analog.norm} · rate code ${analog.rate_code} · volume ${analog.volume} · motion detection ${analog.motion_started ? 'runs' : 'is off'}` : 'The program is not running.');
  };
  on('state', (state) => update(state.analog));
  on('board', (board) => {
    if (board.power === 'off' || board.exit) update(null);
  });
  update(null);
  const chips = Array.from({length: kInputs / kPerChip}, (_, chip) =>
    make('section', {class: 'chip-row', 'aria-label': `Analog chip ${chip}`}, make('h3', {}, `Chip ${chip}`),
      make('div', {class: 'inputs'}, ...tiles.slice(chip * kPerChip, (chip + 1) * kPerChip).map(({tile}) => tile))));
  return make('div', {class: 'analog'}, ...chips, facts);
}
