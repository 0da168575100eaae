// What the element does with the keys a person presses while it has the focus.
//
// Every key the control acts on is kept from the page: plain keys (the control's
// routing keys, Delete, Space, characters) would otherwise scroll the page or move its
// focus, and Ctrl+Z and Ctrl+Y would also undo or redo the page's own text fields.
// Other shortcuts (Ctrl+C, Ctrl+F, anything with Alt, the function keys) still reach
// the control but stay the browser's too.
//
// The control takes Tab for itself, so a keyboard user leaves it as in a code editor:
// Escape (which the control still receives), then Tab or Shift+Tab.

const F1 = 112, F24 = 135, KEY_Y = 89, KEY_Z = 90;

export function keyKeptFromPage(event) {
  if (event.altKey) return false;
  if (event.ctrlKey || event.metaKey) return event.keyCode === KEY_Z || event.keyCode === KEY_Y;
  return event.keyCode < F1 || event.keyCode > F24;
}

export class KeyboardExit {
  #afterEscape = false;

  // Follows the key presses; true for the Tab that leaves, which the control must not
  // hear and the page must act on.
  leaves(event) {
    const plain = !event.ctrlKey && !event.altKey && !event.metaKey;
    const leaving = this.#afterEscape && plain && event.key === 'Tab';
    this.#afterEscape = plain && event.key === 'Escape';
    return leaving;
  }
}
