// <image-edit-control>: the ImageEdit control as a custom element.
//
// Importing this module defines the element (importing it again, from any URL, does
// nothing more). Each element runs its own copy of the engine (compiled once per
// page) with one control, made at the size of the element's box (which its `width` and
// `height` attributes give, 640 x 480 by default, unless the page's style sizes it), in
// the language of its `lang` attribute (or the browser's). Removing the element
// destroys its control and everything the control held; putting it back makes a fresh
// one. The page drives it through the control's 56 methods, which are methods of the
// element with the same names, arguments and results, and hears its events as DOM
// events and through connected sinks. A person uses it with the mouse and the keyboard.
//
// Methods that load pictures or open a dialog return Promises; see README.md. The
// methods and what the element must know of them (image-edit-interface.js) and the
// TypeScript declaration (image-edit-control.d.ts) are generated from the control's
// interface description.

import {
  artworkUrl, askColor, askFont, DIALOG_STYLE, openDialog, openResourceDialog,
} from './image-edit-dialogs.js';
import { loadEngine } from './image-edit-engine-loader.js';
import { EVENTS, METHODS } from './image-edit-interface.js';
import { keyKeptFromPage, KeyboardExit } from './image-edit-keys.js';
import { MENU_STYLE, PopupMenu } from './image-edit-menu.js';
import { ControlSizing, SIZING_STYLE } from './image-edit-sizing.js';
import { TEXT_BOX_STYLE, TextBoxOverlay } from './image-edit-text-box.js';

// The dialog a call opens now: 'color', 'font' or 'about', or null for none. A method
// that opens one for some values of its argument compares the argument in upper case,
// null and undefined standing for ''.
function dialogOf(method, args) {
  const { dialog } = method;
  if (dialog === undefined) return null;
  if (dialog.parameter === undefined) return dialog.kind;
  const argument = args[dialog.parameter] ?? '';
  return typeof argument === 'string' && dialog.values.includes(argument.toUpperCase()) ? dialog.kind : null;
}

const WM_KEYDOWN = 0x0100, WM_KEYUP = 0x0101, WM_MOUSEMOVE = 0x0200;
const BUTTON_MESSAGES = [  // down, up, double click per pointer button (0 left, 2 right)
  [0x0201, 0x0202, 0x0203], undefined, [0x0204, 0x0205, 0x0204],
];
// A second press this soon and this close to the first is a double click.
const DOUBLE_CLICK_MS = 500, DOUBLE_CLICK_DISTANCE = 2;

// Error codes of failed fetches, as a failed download leaves them.
const ERROR_FILE_NOT_FOUND = 2, ERROR_NOT_ENOUGH_MEMORY = 8, ERROR_FILE_TOO_LARGE = 223, ERROR_INTERNET_TIMEOUT = 12002,
  ERROR_INTERNET_INTERNAL_ERROR = 12004, ERROR_INTERNET_CANNOT_CONNECT = 12029;
const FETCH_TIMEOUT_MS = 60_000, MAX_FETCH_BYTES = 64 * 1024 * 1024;

const LANGUAGES = { ko: 0x0412, zh: 0x0804 };
const ENGLISH = 0x0409;
// The faces the font dialog offers: those the engine draws in a page.
const FONT_FACES = ['Arial', '굴림체', '宋体'];
// What the font dialog's sample shows, by the element's language.
const FONT_SAMPLES = { ko: '가나다 AaBbYyZz', zh: '中文字体 AaBbYyZz' };
// What assistive technology hears, by the element's language: its name when the page
// gives none, and what became of a picture or a save.
const SPOKEN = {
  en: { name: 'Image editor', loaded: 'Picture loaded', saved: 'Picture saved' },
  ko: { name: '이미지 편집기', loaded: '그림을 불러왔습니다', saved: '그림을 저장했습니다' },
  zh: { name: '图像编辑器', loaded: '图片已加载', saved: '图片已保存' },
};
// Where the picture toBlob encodes is written for a moment: a bare name, so the
// temp folder.
const EXPORT_FILE = 'image-edit-export.bmp';

// A picture a call named could not be fetched or decoded: the control's text for it
// and its error code. The call itself ran (with the control's behaviour for a failed
// load); `result` is what it returned.
export class ImageEditLoadError extends Error {
  constructor(method, source, code, message, result) {
    super(message);
    this.name = 'ImageEditLoadError';
    Object.assign(this, { method, source, code, result });
  }
}

const STYLE = `
  :host { display: inline-block; position: relative; outline: none; line-height: 0; vertical-align: top; }
  :host(:focus-visible) { outline: 2px solid #1a73e8; outline-offset: 2px; }
  canvas { display: block; image-rendering: pixelated; touch-action: none; }
  .status { position: absolute; width: 1px; height: 1px; overflow: hidden; clip-path: inset(50%); }
${SIZING_STYLE}${DIALOG_STYLE}${MENU_STYLE}${TEXT_BOX_STYLE}`;

const MB_ICONMASK = 0x00F0, MB_ICONHAND = 0x0010;

export class ImageEditControl extends HTMLElement {
  static observedAttributes = ['width', 'height', 'lang', 'memory-budget'];

  #engine = null;    // the engine module, or the Promise of it while the control is made
  #memory = null;    // its WebAssembly memory
  #release = null;   // stops what the engine runs beside the page
  #control = null;   // its WebControl
  #internals;
  #canvas;
  #context;
  #status;           // what assistive technology announces
  #sizing;
  #keyboardExit = new KeyboardExit();
  #resolveReady;
  #cursor = 'default';
  #busy = 0;
  #cursorCache = new Map();
  #queue = Promise.resolve();  // Promise-returning calls run one after another
  #openDialogs = [];           // page dialogs a call opened, for its Promise to wait on
  #pictureReads = [];          // what became of the pictures the call running now loaded
  #lastPress = null;
  #ticker = 0;
  #menu;                       // the shortcut menu, while the engine's popup menu is on the page
  #textBox;                    // the page's text field over the engine's open text box
  #dialogStart = null;         // what the colour or font dialog the engine opened starts from
  #frameCopy = null;           // the frames of the engine with threads, copied out of shared memory
  #waitingPasses = null;       // lengthy calls waiting for the next frame, [name, args] each

  constructor() {
    super();
    this.#newReady();
    this.#internals = this.attachInternals();
    this.#internals.role = 'application';
    const root = this.attachShadow({ mode: 'open' });
    const style = document.createElement('style');
    style.textContent = STYLE;
    const boxStyle = document.createElement('style');
    this.#canvas = document.createElement('canvas');
    this.#status = document.createElement('div');
    this.#status.className = 'status';
    this.#status.setAttribute('role', 'status');
    const surface = document.createElement('div');
    surface.className = 'surface';
    surface.append(this.#canvas);
    root.append(style, boxStyle, surface, this.#status);
    this.#sizing = new ControlSizing(this, this.#canvas, boxStyle, (width, height) => {
      if (this.#control === null) return;
      this.#settled.resize(width, height);
      this.#keepTime();
    });
    this.#menu = new PopupMenu(root, (command) => this.#menuClosed(command));
    this.#textBox = new TextBoxOverlay(surface, this.#canvas, {
      setText: (text) => this.#settled.setTextBoxText(text),
      key: (message, event) => this.#sendKey(message, event, 0),
      readFont: (path) => this.#engine.FS.readFile(path),
    });
    this.#listen();
  }

  // True from a Promise-returning call (a picture being fetched and decoded, a dialog
  // waiting for the person) until it settles, and from a lengthy call until it has
  // run; `aria-busy` says the same.
  get busy() { return this.#busy > 0; }

  connectedCallback() {
    if (!this.hasAttribute('tabindex')) this.tabIndex = 0;
    this.#internals.ariaLabel = this.#spoken().name;
    if (this.#engine === null) this.#create();
  }

  // Only a removal that lasts destroys the control: an element moved within the page
  // is taken out and put back in one go, and keeps its control.
  disconnectedCallback() {
    queueMicrotask(() => { if (!this.isConnected) this.#destroy(); });
  }

  attributeChangedCallback(name) {
    if (name === 'lang') this.#internals.ariaLabel = this.#spoken().name;
    else if (name === 'memory-budget') this.#applyMemoryBudget();
    else this.#sizing.attributesChanged();
  }

  async #create() {
    const loading = loadEngine();
    this.#engine = loading;  // not null any more: the control is being made
    const [{ engine, memory, release }, size] = await Promise.all([loading, this.#sizing.start()]);
    if (this.#engine !== loading) {  // removed meanwhile
      release();
      return;
    }
    this.#engine = engine;
    this.#memory = memory;
    this.#release = release;
    this.#applyMemoryBudget();
    this.#context = this.#canvas.getContext('2d');
    this.#control = new engine.WebControl(size.width, size.height, LANGUAGES[this.#language()] ?? ENGLISH,
      this.#pageSide());
    this.#control.connectSink(Object.fromEntries(EVENTS.map((name) =>
      [name, (detail) => this.dispatchEvent(new CustomEvent(name, { detail }))])));
    this.#resolveReady(this);
  }

  // `memory-budget` is in MiB; absent, 0 or not a number, the engine's default.
  #applyMemoryBudget() {
    if (this.#engine === null || this.#engine instanceof Promise) return;
    const mebibytes = Number(this.getAttribute('memory-budget'));
    this.#engine.setGraphicsMemoryBudget(Number.isFinite(mebibytes) && mebibytes > 0 ? mebibytes : 0);
  }

  // Gives up the control and everything it holds: the engine (its memory goes once
  // nothing refers to it), its worker, its timer and what it put on the page. A call
  // under way rejects; calls not yet started wait for the next control.
  #destroy() {
    this.#sizing.stop();
    if (this.#engine === null) return;
    const control = this.#control;
    this.#engine = null;
    this.#control = null;
    if (control !== null) {
      if (this.#waitingPasses !== null) {
        this.#waitingPasses = null;
        this.#setBusy(-1);
      }
      clearInterval(this.#ticker);
      this.#ticker = 0;
      this.#menu.close(0);
      this.#textBox.update(null);
      control.delete();
      this.#release();
      this.#memory = null;
      this.#release = null;
      this.#frameCopy = null;
      this.#context.clearRect(0, 0, this.#canvas.width, this.#canvas.height);
      this.#newReady();
    }
  }

  #newReady() {
    this.ready = new Promise((resolve) => { this.#resolveReady = resolve; });
  }

  // The element's language: the two letters of its `lang` attribute or the browser's.
  #language() { return (this.getAttribute('lang') || navigator.language || '').toLowerCase().slice(0, 2); }
  // What assistive technology hears, in that language.
  #spoken() { return SPOKEN[this.#language()] ?? SPOKEN.en; }

  // ---- events and sinks ----

  // Connects an object whose ColorSelected / ImageScaled methods are called when the
  // control fires those events; returns the connection's cookie.
  connectSink(sink) { return this.#control ? this.#control.connectSink(sink) : 0; }
  disconnectSink(cookie) { return this.#control ? this.#control.disconnectSink(cookie) : false; }

  // ---- calls ----

  // Every interface method is a method of the element.
  static {
    for (const method of METHODS) {
      this.prototype[method.name] = function (...args) { return this.#dispatch(method, args); };
    }
  }

  #dispatch(method, args) {
    if (method.pictures) return this.#loadingCall(method, args);
    const dialog = dialogOf(method, args);
    if (dialog === 'color' || dialog === 'font') return this.#dialogCall(method.name, args, dialog);
    // The About box is shown through the page side as the call runs.
    if (dialog !== null) return this.#callLater(method.name, args);
    return this.#call(method, args);
  }

  #invoke(name, args) {
    if (this.#control === null) throw new Error(`${name}: the element was removed from the page`);
    // A popup menu is modal: anything else the engine is asked to do means it is gone.
    this.#menu.close(0);
    const outcome = this.#settled.invoke(name, args);
    this.#keepTime();
    if ('error' in outcome) throw new TypeError(outcome.error);
    return outcome.value;
  }

  #call(method, args) {
    if (this.#control === null) return method.empty;
    if (method.savefile !== undefined) return this.#save(method, args);
    if (method.lengthy) return this.#callAtNextFrame(method.name, args);
    return this.#invoke(method.name, args);
  }

  // A call that may pass over the whole picture runs at the next frame, once the
  // browser has shown the wait cursor: run at once, it would freeze the page with no
  // sign, since nothing the page changes is shown until the call returns. Whatever
  // reaches the control first (another call, the person's input, a resize, a timer)
  // runs the waiting calls before it, so any sequence of calls and input gives what
  // it gives when every call runs at once. The arguments are checked now: a bad call
  // throws here, as it does at once.
  #callAtNextFrame(name, args) {
    this.#menu.close(0);
    const refused = this.#control.check(name, args);
    if (refused !== null) throw new TypeError(refused);
    if (this.#waitingPasses === null) {
      const waiting = [];
      this.#waitingPasses = waiting;
      this.#setBusy(+1);
      // After the frame that shows the cursor, not in it: a frame callback runs before
      // the browser paints.
      requestAnimationFrame(() => setTimeout(() => {
        if (this.#waitingPasses === waiting) this.#runWaitingPasses();
      }));
    }
    this.#waitingPasses.push([name, args]);
  }

  // The control, once the lengthy calls waiting for the next frame have run: every
  // call and input reaches the engine through it, so none can overtake them.
  get #settled() {
    this.#runWaitingPasses();
    return this.#control;
  }

  #runWaitingPasses() {
    const waiting = this.#waitingPasses;
    if (waiting === null) return;
    this.#waitingPasses = null;
    try {
      for (const [name, args] of waiting) this.#control.invoke(name, args);
      this.#keepTime();
    } finally {
      this.#setBusy(-1);
    }
  }

  // A Promise-returning call: after the calls before it, once the control exists; it
  // runs `run` (by default the call itself) and resolves with its result when any
  // page dialog the call opened has closed too. The element is busy from the call
  // until its Promise settles.
  #callLater(name, args, run = () => this.#invoke(name, args)) {
    const call = async () => {
      // A removal just before the call began leaves it to the next control.
      do await this.ready; while (this.#control === null);
      try {
        this.#openDialogs = [];
        const result = await run();
        await Promise.all(this.#openDialogs);
        return result;
      } finally {
        this.#control?.forgetPictures();
      }
    };
    this.#setBusy(+1);
    const result = this.#queue.then(call).finally(() => this.#setBusy(-1));
    this.#queue = result.catch(() => {});
    return result;
  }

  // A call that loads pictures runs once they are fetched and decoded. Each picture
  // the control then loaded fires `load`, each it could not `error` (with the
  // control's text and code); the call rejects with the first failure.
  #loadingCall(method, args) {
    const sources = method.pictures.map((i) => args[i]).filter((s) => typeof s === 'string');
    return this.#callLater(method.name, args, async () => {
      await Promise.all(sources.map((s) => this.#preparePicture(s)));
      this.#pictureReads = [];
      const result = this.#invoke(method.name, args);
      const reads = this.#pictureReads;
      this.#pictureReads = [];
      const spoken = this.#spoken();
      for (const { source, error, message } of reads) {
        if (error === 0) {
          this.dispatchEvent(new CustomEvent('load', { detail: { method: method.name, source } }));
        } else {
          this.dispatchEvent(new CustomEvent('error', { detail: { method: method.name, source, code: error, message } }));
        }
        this.#announce(error === 0 ? spoken.loaded : message);
      }
      const failed = reads.find(({ error }) => error !== 0);
      if (failed) throw new ImageEditLoadError(method.name, failed.source, failed.error, failed.message, result);
      return result;
    });
  }

  // The picture as SaveEditedBitmap composes it, encoded by the browser: PNG by
  // default, or the type of another of its encoders ('image/jpeg' and 'image/webp' at
  // `quality`, 0 to 1), as a canvas's toBlob takes them; 'image/bmp' gives the bitmap
  // file the control writes. Rejects when there is no picture to save.
  toBlob(type = 'image/png', quality = undefined) {
    return this.#callLater('toBlob', [], async () => {
      const { path, file: bitmapFile } = this.#saving('SaveEditedBitmap', [EXPORT_FILE], EXPORT_FILE);
      if (bitmapFile === null) throw new Error('toBlob: there is no picture to save');
      this.#engine.FS.unlink(path);
      if (type === 'image/bmp') return bitmapFile;
      const bitmap = await createImageBitmap(bitmapFile, { premultiplyAlpha: 'none', colorSpaceConversion: 'none' });
      const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
      canvas.getContext('2d').drawImage(bitmap, 0, 0);
      bitmap.close();
      return canvas.convertToBlob({ type, quality });
    });
  }

  // Said to assistive technology, politely (the status region).
  #announce(text) { this.#status.textContent = text; }

  // A call that opens the colour or font dialog runs twice. The first time the engine
  // opens its dialog with no answer waiting: the page side hears what it starts from
  // (the engine's colour or font, and a colour dialog's custom colours) and the
  // dialog is cancelled, which changes nothing. The person then answers the page's
  // dialog, and the call runs again with that answer waiting, as the script host
  // answers dialogs it was told of beforehand. A colour dialog's answer also carries
  // the custom colours, which stay as the person left them even on Cancel.
  #dialogCall(name, args, kind) {
    return this.#callLater(name, args, async () => {
      this.#dialogStart = null;
      const unanswered = this.#invoke(name, args);
      const start = this.#dialogStart;
      this.#dialogStart = null;
      if (start === null) return unanswered;  // the call opened no dialog
      if (kind === 'font') {
        const lang = this.#language();
        const chosen = await askFont(this.shadowRoot, { ...start, color: colorString(start.color) }, FONT_FACES,
          FONT_SAMPLES[lang] ?? 'AaBbYyZz');
        if (chosen === null) return unanswered;
        this.#control.queueFontAnswer({ ...chosen, color: colorref(chosen.color) });
      } else {
        const custom = start.custom.map(colorString);
        const chosen = await askColor(this.shadowRoot, colorString(start.color), custom);
        this.#control.queueColorAnswer(chosen === null ? -1 : colorref(chosen), custom.map(colorref));
      }
      return this.#invoke(name, args);
    });
  }

  // The person closed the shortcut menu, with the command they picked or 0.
  #menuClosed(command) {
    this.#settled.menuChosen(command);
    this.#keepTime();
    if (command !== 0) this.focus({ preventScroll: true });
  }

  // A save also hands the written file to the page: the `saved` event carries its
  // path in the in-memory file system and a Blob of its bytes.
  #save(method, args) {
    const { result, path, file } = this.#saving(method.name, args, args[method.savefile]);
    if (file !== null) {
      this.dispatchEvent(new CustomEvent('saved', { detail: { fileName: path, blob: file } }));
      this.#announce(this.#spoken().saved);
    }
    return result;
  }

  // Calls a method that saves a bitmap file under `name`: its result, the file's path
  // and, when the call wrote it, the file as a Blob (null when it wrote nothing).
  #saving(methodName, args, name) {
    const path = typeof name === 'string' && name !== '' ? this.#control.savePath(name) : null;
    const FS = this.#engine.FS;
    const written = () => path !== null && FS.analyzePath(path).exists && FS.stat(path).mtime.getTime() !== 0;
    // A file of that name already there is marked, so that only a new write counts.
    if (written()) FS.utime(path, 0, 0);
    const result = this.#invoke(methodName, args);
    const file = written() ? new Blob([FS.readFile(path)], { type: 'image/bmp' }) : null;
    return { result, path, file };
  }


  // ---- pictures ----

  // Fetches and decodes one picture for the engine under the exact string the caller
  // passed. A path naming a file of the in-memory file system (a saved bitmap) is
  // left for the engine to read there; every other string is fetched relative to the
  // page. The empty string is left to the engine, which refuses it.
  async #preparePicture(source) {
    if (source === '' || this.#engine.FS.analyzePath(source).exists) return;
    // The element may be removed, and even put back with a new engine, while the
    // browser fetches and decodes: nothing goes to an engine but the one asked.
    const control = this.#control;
    // The engine's memory as bytes, viewed afresh each time: the memory grows with the
    // pictures, and in the engine with threads it may grow on the other thread, which
    // leaves every older view (the engine's own HEAPU8 too) on the shorter buffer.
    const memory = this.#memory;
    const heap = () => new Uint8Array(memory.buffer);
    const stillAsked = () => {
      if (this.#control !== control) throw new Error(`${source}: the element was removed from the page`);
    };
    let bytes;
    try {
      bytes = await fetchBytes(source);
    } catch (failure) {
      stillAsked();
      control.prepareFailure(source, failure.code ?? ERROR_INTERNET_INTERNAL_ERROR);
      return;
    }
    stillAsked();
    const bytesAt = control.prepareBytes(source, bytes.length);
    if (bytesAt === 0) {
      control.prepareFailure(source, ERROR_NOT_ENOUGH_MEMORY);
      return;
    }
    heap().set(bytes, bytesAt);
    if (isBitmapFile(bytes)) return;
    // The browser decodes the bytes as the loader will read them, repaired.
    const repaired = heap().slice(bytesAt, bytesAt + control.repairBytes(source));
    const picture = await decodePicture(repaired);
    if (picture === null) return;
    try {
      stillAsked();
      const pixelsAt = control.preparePixels(source, picture.width, picture.height);
      if (pixelsAt !== 0) await picture.copyTo(heap, pixelsAt);
    } finally {
      picture.close();
    }
  }

  // ---- what the engine asks of the page ----

  #pageSide() {
    return {
      // Only [left, right) x [top, bottom) changed since the frame before, and only it
      // is put on the canvas. A frame of a new size comes whole; the canvas must not be
      // cleared (its size set) without a frame of the new size following.
      presentFrame: (address, width, height, left, top, right, bottom) => {
        const frame = new Uint8ClampedArray(this.#memory.buffer, address, width * height * 4);
        this.#context.putImageData(this.#frameImage(frame, width, height, top, bottom), 0, 0, left, top,
          right - left, bottom - top);
      },
      showCursor: (id) => {
        this.#cursor = this.#cursorCss(id);
        this.#applyCursor();
      },
      // Shown without waiting: the engine has been answered OK already, and the
      // person closes the box when they have read it.
      showMessageBox: (text, caption, type) => {
        const icon = (type & MB_ICONMASK) === MB_ICONHAND ? '<span class="stop" aria-hidden="true">&times;</span>' : '';
        openDialog(this.shadowRoot, caption, text, icon, [['OK', true]]);
      },
      showDialog: (layout) => { this.#openDialogs.push(openResourceDialog(this.shadowRoot, layout)); },
      askColor: (color, custom) => { this.#dialogStart = { color, custom }; },
      askFont: (start) => { this.#dialogStart = start; },
      pictureRead: (source, error, message) => this.#pictureReads.push({ source, error, message }),
      // At the point of the control the engine gives, in the page's coordinates.
      textBoxChanged: (box) => this.#textBox.update(box),
      showPopupMenu: (items, x, y) => {
        const box = this.#canvas.getBoundingClientRect();
        const scaleX = box.width / this.#canvas.width, scaleY = box.height / this.#canvas.height;
        this.#menu.open(items, box.left + x * scaleX, box.top + y * scaleY);
      },
    };
  }

  // The frame as ImageData, up to date in rows [top, bottom). ImageData takes no view
  // of shared memory, so the engine with threads has its frames copied, into one
  // ImageData kept for them (a drag presents a frame for every move, and a new one
  // each time would leave the collector megabytes to sweep); only the rows that
  // changed are copied, the others hold the frame before already.
  #frameImage(frame, width, height, top, bottom) {
    if (frame.buffer instanceof ArrayBuffer) return new ImageData(frame, width, height);
    if (this.#frameCopy?.width !== width || this.#frameCopy.height !== height) {
      this.#frameCopy = new ImageData(width, height);
      [top, bottom] = [0, height];
    }
    const row = width * 4;
    this.#frameCopy.data.set(frame.subarray(top * row, bottom * row), top * row);
    return this.#frameCopy;
  }

  #cursorCss(id) {
    if (id === 0) return 'default';
    if (id === -1) return 'none';
    if (id === 32514) return 'wait';
    if (!this.#cursorCache.has(id)) {
      const art = this.#control.cursorArtwork(id);
      this.#cursorCache.set(id, art ? `url(${artworkUrl(art)}) ${art.hotX} ${art.hotY}, auto` : 'default');
    }
    return this.#cursorCache.get(id);
  }

  #setBusy(step) {
    this.#busy += step;
    this.#internals.ariaBusy = String(this.#busy > 0);
    this.#applyCursor();
  }

  #applyCursor() { this.#canvas.style.cursor = this.#busy > 0 ? 'wait' : this.#cursor; }

  // The control's clock follows real time while it has timers (a held scroll-bar
  // arrow repeats, a held airbrush sprays).
  #keepTime() {
    if (this.#ticker !== 0 || this.#control === null || !this.#control.hasTimers()) return;
    let last = performance.now();
    this.#ticker = setInterval(() => {
      const now = performance.now();
      const elapsed = Math.floor(now - last);
      last += elapsed;
      if (elapsed > 0) this.#settled.tick(elapsed);
      if (!this.#control.hasTimers()) {
        clearInterval(this.#ticker);
        this.#ticker = 0;
      }
    }, 10);
  }

  // ---- a person's input ----

  #listen() {
    const canvas = this.#canvas;
    // One message for each of `events` (the moves one pointer event coalesces, in
    // order): each is painted as it comes, but only the last frame is shown, the one
    // the browser will draw.
    const send = (message, events) => {
      if (this.#control === null) return;
      const control = this.#settled;
      const box = canvas.getBoundingClientRect();
      events.forEach((event, i) => {
        const { x, y } = this.#sizing.pointAt(event, box);
        control.pointer(message, x, y, event.ctrlKey || event.metaKey, event.shiftKey, i === events.length - 1);
      });
      this.#keepTime();
    };
    // The button whose press the control heard and whose release it has not.
    let held = null;
    canvas.addEventListener('pointerdown', (event) => {
      const messages = BUTTON_MESSAGES[event.button];
      if (!messages) return;
      event.preventDefault();
      this.focus({ preventScroll: true });
      // The control holds the pointer until the release, as mouse capture does; a
      // shortcut menu the press opened takes it over.
      canvas.setPointerCapture(event.pointerId);
      held = event.button;
      send(this.#isDoubleClick(event) ? messages[2] : messages[0], [event]);
      if (this.#menu.isOpen) {
        canvas.releasePointerCapture(event.pointerId);
        held = null;
      }
    });
    canvas.addEventListener('pointermove', (event) => {
      const moves = event.getCoalescedEvents ? event.getCoalescedEvents() : [];
      send(WM_MOUSEMOVE, moves.length > 0 ? moves : [event]);
    });
    canvas.addEventListener('pointerup', (event) => {
      const messages = BUTTON_MESSAGES[event.button];
      if (!messages) return;
      if (event.button === held) held = null;
      send(messages[1], [event]);
    });
    // A pointer the browser takes away (a touch that becomes a scroll, a system
    // gesture) is never released: the control hears its button let go where it is,
    // so that a drag, a pan or a stroke ends rather than waiting for a release.
    canvas.addEventListener('pointercancel', (event) => {
      if (held === null) return;
      const release = BUTTON_MESSAGES[held][1];
      held = null;
      send(release, [event]);
    });
    canvas.addEventListener('contextmenu', (event) => event.preventDefault());
    this.addEventListener('keydown', (event) => this.#key(WM_KEYDOWN, event));
    this.addEventListener('keyup', (event) => this.#key(WM_KEYUP, event));
  }

  #isDoubleClick(event) {
    const last = this.#lastPress;
    const double = last !== null && last.button === event.button && event.timeStamp - last.time < DOUBLE_CLICK_MS &&
      Math.abs(event.clientX - last.x) <= DOUBLE_CLICK_DISTANCE && Math.abs(event.clientY - last.y) <= DOUBLE_CLICK_DISTANCE;
    this.#lastPress = double ? null : { button: event.button, time: event.timeStamp, x: event.clientX, y: event.clientY };
    return double;
  }

  // Keys reach the control while it has the focus (image-edit-keys.js says which
  // stay from the page, and how a keyboard user leaves).
  #key(message, event) {
    if (this.#control === null || event.composedPath()[0] !== this) return;
    if (message === WM_KEYDOWN && this.#keyboardExit.leaves(event)) return;
    const ctrl = event.ctrlKey || event.metaKey;
    const character = message === WM_KEYDOWN && !ctrl && [...event.key].length === 1 ? event.key.codePointAt(0) : 0;
    const taken = this.#sendKey(message, event, character);
    if (taken || keyKeptFromPage(event)) {
      event.preventDefault();
      event.stopPropagation();
    }
  }

  // A key to the engine; true when the control's key routing took it.
  #sendKey(message, event, character) {
    const taken = this.#settled.key(message, event.keyCode, event.ctrlKey || event.metaKey, event.shiftKey,
      event.repeat, character);
    this.#keepTime();
    return taken;
  }
}

// ---- fetching and decoding with the browser ----

function fetchFailure(code) { return Object.assign(new Error(`fetch failed (${code})`), { code }); }

async function fetchBytes(source) {
  const url = new URL(source, document.baseURI);
  let response;
  try {
    response = await fetch(url, { signal: AbortSignal.timeout(FETCH_TIMEOUT_MS) });
  } catch (error) {
    throw fetchFailure(error.name === 'TimeoutError' ? ERROR_INTERNET_TIMEOUT : ERROR_INTERNET_CANNOT_CONNECT);
  }
  if (!response.ok) {
    throw fetchFailure(response.status === 404 || response.status === 410 ? ERROR_FILE_NOT_FOUND
      : ERROR_INTERNET_INTERNAL_ERROR);
  }
  if (Number(response.headers.get('content-length')) > MAX_FETCH_BYTES) throw fetchFailure(ERROR_FILE_TOO_LARGE);
  let body;
  try {
    body = new Uint8Array(await response.arrayBuffer());
  } catch (error) {
    throw fetchFailure(error.name === 'TimeoutError' ? ERROR_INTERNET_TIMEOUT : ERROR_INTERNET_INTERNAL_ERROR);
  }
  if (body.length > MAX_FETCH_BYTES) throw fetchFailure(ERROR_FILE_TOO_LARGE);
  return body;
}

// "#rrggbb" as the engine takes a colour: a COLORREF, 0x00BBGGRR.
function colorref(color) {
  const rgb = Number.parseInt(color.slice(1), 16);
  return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | (rgb >> 16);
}

// A COLORREF (0x00BBGGRR) as "#rrggbb".
function colorString(ref) {
  const rgb = ((ref & 0xFF) << 16) | (ref & 0xFF00) | ((ref >> 16) & 0xFF);
  return `#${rgb.toString(16).padStart(6, '0')}`;
}

const isBitmapFile = (bytes) => bytes.length >= 2 && bytes[0] === 0x42 && bytes[1] === 0x4D;

// The browser's own decoders: the picture's pixels as stored (no colour management,
// no EXIF rotation, alpha not premultiplied), or null when it cannot be decoded. It
// comes as its size and copyTo(heap, at), which writes its RGBA bytes at `at` of the
// engine's memory (`heap()` views it afresh), and close().
async function decodePicture(bytes) {
  let bitmap;
  try {
    bitmap = await createImageBitmap(new Blob([bytes]), {
      premultiplyAlpha: 'none', colorSpaceConversion: 'none', imageOrientation: 'none',
    });
  } catch {
    return null;
  }
  const { width, height } = bitmap;
  return {
    width, height,
    copyTo: async (heap, at) => {
      if (isJpegFile(bytes) && await copyFramePixels(bitmap, heap, at)) return;
      const canvas = new OffscreenCanvas(width, height);
      const context = canvas.getContext('2d');
      context.drawImage(bitmap, 0, 0);
      heap().set(context.getImageData(0, 0, width, height).data, at);
    },
    close: () => bitmap.close(),
  };
}

const isJpegFile = (bytes) => bytes.length >= 3 && bytes[0] === 0xFF && bytes[1] === 0xD8 && bytes[2] === 0xFF;

// An opaque picture's pixels straight into the engine's memory, converted to RGBA as
// they are copied: a canvas would have them drawn, read back into an ImageData and
// copied again, three passes over the picture's bytes instead of one. A picture with
// alpha might be premultiplied on the way, so only JPEGs come this way. False when
// the browser cannot, or the memory grew under the copy (a view of memory that grew
// is left empty), and the canvas must do it.
async function copyFramePixels(bitmap, heap, at) {
  if (typeof VideoFrame === 'undefined') return false;
  let frame;
  try {
    frame = new VideoFrame(bitmap, { timestamp: 0 });
    const target = heap();
    await frame.copyTo(target.subarray(at, at + bitmap.width * bitmap.height * 4), { format: 'RGBA' });
    return target.byteLength !== 0;
  } catch {
    return false;
  } finally {
    frame?.close();
  }
}

// A second copy of this module (imported from another URL, or bundled twice) finds the
// element defined and leaves it.
if (customElements.get('image-edit-control') === undefined) {
  customElements.define('image-edit-control', ImageEditControl);
}
