// The page's text field over the engine's text box (see text_box_mirror.h): a
// <textarea> placed over the box's edit control, in its font, that takes what the
// person types, composes with an input method or pastes. Only text that is no longer
// being composed goes to the engine, which stamps it when the box closes.
//
// Keys typed into it belong to it and never reach the page, except those the
// control's key routing hands to the editor window (Tab, Escape, Page Up and Down,
// End, Home, the arrows, Delete): they go to the engine, as they would from the
// engine's own edit control, and do nothing in the field.

const WM_KEYDOWN = 0x0100, WM_KEYUP = 0x0101;
const ROUTED_KEYS = new Set([9, 27, 33, 34, 35, 36, 37, 38, 39, 40, 46]);
// What an edit control lets a person type.
const EDIT_LIMIT = 30000;

export const TEXT_BOX_STYLE = `
  .surface { position: relative; }
  textarea.text-box { position: absolute; box-sizing: border-box; margin: 0; padding: 0; border: 0; outline: none;
                      resize: none; overflow: hidden; background: #fff; color: #000; white-space: pre;
                      overflow-wrap: normal; }
`;

// The engine's font files made the document's fonts, each a family of its own named
// after its path (every engine of the page carries the same files).
const pageFonts = new Map();  // path -> family
function pageFont(file, readFont) {
  let family = pageFonts.get(file.path);
  if (family === undefined) {
    family = `image-edit ${file.path}`;
    const face = new FontFace(family, readFont(file.path), {
      weight: file.bold ? '700' : '400', style: file.italic ? 'italic' : 'normal',
    });
    document.fonts.add(face);
    // A file the browser cannot read leaves the field to the families after it.
    face.load().catch(() => {});
    pageFonts.set(file.path, family);
  }
  return family;
}

export class TextBoxOverlay {
  #surface;
  #canvas;
  #engine;
  #field = null;

  // `engine.setText(text)` replaces the engine's box text; `engine.key(message,
  // event)` sends a key to the engine and says whether its routing took it;
  // `engine.readFont(path)` gives the bytes of one of its font files.
  constructor(surface, canvas, engine) {
    this.#surface = surface;
    this.#canvas = canvas;
    this.#engine = engine;
  }

  // The engine's box as text_box_mirror.h describes it, or null once it is closed.
  update(box) {
    if (box === null) {
      this.#close();
      return;
    }
    const opening = this.#field === null;
    const field = this.#field ?? this.#open(box.text);
    // Control pixels to CSS pixels: the canvas is shown at the device pixel ratio's
    // whole part (image-edit-sizing.js).
    const shown = this.#canvas.getBoundingClientRect();
    const scaleX = shown.width / this.#canvas.width;
    const scaleY = shown.height / this.#canvas.height;
    const quote = (name) => `"${name.replace(/["\\]/g, '\\$&')}"`;
    const families = [...box.fontFiles.map((file) => pageFont(file, this.#engine.readFont)), box.face];
    Object.assign(field.style, {
      left: `${box.left * scaleX}px`, top: `${box.top * scaleY}px`,
      width: `${box.width * scaleX}px`, height: `${box.height * scaleY}px`,
      fontFamily: `${families.map(quote).join(', ')}, sans-serif`, fontSize: `${box.fontHeight * scaleY}px`,
      lineHeight: box.lineHeight > 0 ? `${box.lineHeight * scaleY}px` : 'normal',
      fontWeight: box.bold ? '700' : '400', fontStyle: box.italic ? 'italic' : 'normal',
      textDecoration: [box.underline && 'underline', box.strikeOut && 'line-through'].filter(Boolean).join(' ')
        || 'none',
    });
    if (opening) field.focus({ preventScroll: true });
  }

  #open(text) {
    const field = document.createElement('textarea');
    field.className = 'text-box';
    field.wrap = 'off';
    field.spellcheck = false;
    field.maxLength = EDIT_LIMIT;
    field.setAttribute('autocomplete', 'off');
    field.setAttribute('autocapitalize', 'off');
    field.setAttribute('aria-label', 'Text');
    field.value = text.replace(/\r\n/g, '\n');
    // Only the field's own events count: one that fires as it goes away (a blur that
    // ends a composition) comes too late for the closed box.
    const live = (event) => event.target === this.#field;
    const send = (event) => { if (live(event)) this.#engine.setText(field.value); };
    for (const type of ['keypress', 'beforeinput', 'input', 'compositionstart', 'compositionupdate',
      'compositionend', 'paste', 'cut', 'copy']) {
      field.addEventListener(type, (event) => event.stopPropagation());
    }
    field.addEventListener('input', (event) => { if (!event.isComposing) send(event); });
    field.addEventListener('compositionend', send);
    for (const [type, message] of [['keydown', WM_KEYDOWN], ['keyup', WM_KEYUP]]) {
      field.addEventListener(type, (event) => {
        event.stopPropagation();
        if (!live(event) || event.isComposing || !ROUTED_KEYS.has(event.keyCode)) return;
        if (this.#engine.key(message, event)) event.preventDefault();
      });
    }
    this.#surface.append(field);
    this.#field = field;
    return field;
  }

  #close() {
    const field = this.#field;
    if (field === null) return;
    this.#field = null;
    // The focus stays with the control rather than falling to the page.
    const focused = field.matches(':focus');
    field.remove();
    if (focused) this.#surface.getRootNode().host.focus({ preventScroll: true });
  }
}
