/*
 * dom.js - elements made and changed from scripts.
 *
 * Styles are set through the object model alone: the page's policy forbids them in attributes.
 */

export const by_id = (id) => document.getElementById(id);

/* make("button", {class: "key", type: "button", onclick: f}, "text", element ...) */
export function make(name, attributes = {}, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) {
    if (value === undefined || value === null || value === false) continue;
    if (key.startsWith('on')) element.addEventListener(key.slice(2), value);
    else element.setAttribute(key, value === true ? '' : value);
  }
  element.append(...children.filter((child) => child !== undefined && child !== null));
  return element;
}

/* Change a text only when it differs: five states a second must not disturb selections and readers. */
export function set_text(element, text) {
  const value = String(text);
  if (element.textContent !== value) element.textContent = value;
}

export function set_attribute(element, name, value) {
  const text = String(value);
  if (element.getAttribute(name) !== text) element.setAttribute(name, text);
}

export function show(element, visible) {
  if (element.hidden === visible) element.hidden = !visible;
}

/*
 * Keep a list of rows in step with an array: rows are made once, moved when the order changed, and
 * removed with what they stood for. `rows` is a Map that the caller keeps, from key to element.
 */
export function keep_rows(parent, rows, items, key_of, create, update) {
  const seen = new Set();
  let place = parent.firstElementChild;
  for (const item of items) {
    const key = key_of(item);
    seen.add(key);
    let row = rows.get(key);
    if (!row) {
      row = create(item);
      rows.set(key, row);
    }
    if (row === place) place = place.nextElementSibling;
    else parent.insertBefore(row, place);
    if (update) update(row, item);
  }
  for (const [key, row] of rows) {
    if (seen.has(key)) continue;
    row.remove();
    rows.delete(key);
  }
}
