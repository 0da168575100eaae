// The control's size and the way its canvas lies in the element's box.
//
// The element's box is what the page's style makes it; without a style of the page it
// is what the `width` and `height` attributes say (640 x 480 CSS pixels by default).
// The control is made at the size the box has when the control is made (the
// attributes' size if the box has none then, as under display: none). The page is the
// control's container: when the box changes, the control's window and the host window
// take the new size as a container would resize them. The control does no layout of
// its own for that, so its editor keeps the size it was made with; a larger box shows
// the control's white background beside it, a smaller one shows part of it.
//
// A control pixel always covers whole device pixels: as many as the whole part of the
// device pixel ratio (one at 100 % and 150 % zoom, two at 200 % and on most phones),
// so nothing is blurred. The control then has as many pixels as fit in the box: at
// 150 % zoom a picture at 100 % shows one picture pixel on one device pixel, smaller
// than at 100 % zoom, and the control has more room; at 200 % every pixel is a 2 x 2
// block.

export const SIZING_STYLE = `
  .surface { position: absolute; left: 0; top: 0; }
`;

const DEFAULT_WIDTH = 640, DEFAULT_HEIGHT = 480;
// What a control can be: the host window's frame is one bitmap of this size at most.
const MAX_SIDE = 16384;

export class ControlSizing {
  #element;
  #canvas;
  #boxStyle;      // the box the attributes give, a rule the page's own style overrides
  #onResize;
  #observer;
  #size = null;   // the control's size for the box: {width, height, scale}
  #attributeSize;  // {width, height} of the attributes
  #firstSize;     // resolves with the size the control is made at
  #resolveFirst = null;

  // `boxStyle` is a <style> of the element's shadow root; `onResize(width, height)`
  // hears every later size of the control.
  constructor(element, canvas, boxStyle, onResize) {
    this.#element = element;
    this.#canvas = canvas;
    this.#boxStyle = boxStyle;
    this.#onResize = onResize;
    this.#observer = new ResizeObserver(([entry]) => this.#observed(entry));
    this.attributesChanged();
  }

  // Follows the box until stop(); resolves with the size to make the control at.
  start() {
    this.#size = null;
    this.#firstSize = new Promise((resolve) => { this.#resolveFirst = resolve; });
    this.#observer.observe(this.#element, { box: 'device-pixel-content-box' });
    return this.#firstSize;
  }

  stop() {
    this.#observer.disconnect();
    this.#resolveFirst = null;
  }

  // The `width` or `height` attribute changed.
  attributesChanged() {
    const side = (name, fallback) => {
      const value = Number.parseInt(this.#element.getAttribute(name), 10);
      return value > 0 && value <= MAX_SIDE ? value : fallback;
    };
    this.#attributeSize = { width: side('width', DEFAULT_WIDTH), height: side('height', DEFAULT_HEIGHT) };
    this.#boxStyle.textContent =
      `:host { width: ${this.#attributeSize.width}px; height: ${this.#attributeSize.height}px; }`;
  }

  // The control's point under a pointer event (whole control pixels); `box` is the
  // canvas's bounding rectangle.
  pointAt(event, box) {
    return {
      x: Math.floor((event.clientX - box.left) * this.#canvas.width / box.width),
      y: Math.floor((event.clientY - box.top) * this.#canvas.height / box.height),
    };
  }

  #observed(entry) {
    const ratio = window.devicePixelRatio || 1;
    // The box in device pixels, from its CSS size: the device box the observer also
    // reports (it is watched so that a change of zoom is heard) is the real screen's
    // even where the ratio is emulated.
    const css = entry.contentBoxSize[0];
    const scale = Math.max(1, Math.floor(ratio + 1e-6));
    let width = Math.min(MAX_SIDE, Math.floor(Math.round(css.inlineSize * ratio) / scale));
    let height = Math.min(MAX_SIDE, Math.floor(Math.round(css.blockSize * ratio) / scale));
    const first = this.#resolveFirst;
    if (width === 0 || height === 0) {
      if (first === null) return;  // hidden: the control keeps its size
      ({ width, height } = this.#attributeSize);
    }
    const changed = this.#size === null || this.#size.width !== width || this.#size.height !== height;
    this.#size = { width, height, scale };
    // A canvas given its size again is cleared, so only a new size is given.
    if (changed) {
      this.#canvas.width = width;
      this.#canvas.height = height;
    }
    this.#canvas.style.width = `${width * scale / ratio}px`;
    this.#canvas.style.height = `${height * scale / ratio}px`;
    if (first !== null) {
      this.#resolveFirst = null;
      first({ width, height });
    } else if (changed) {
      this.#onResize(width, height);
    }
  }
}
