// The demo page: a host page of the kind the control was made for. It uses only the
// element's public interface (its methods, events and `ready`).
const element = document.getElementById('editor');
const status = document.getElementById('status');
const log = document.getElementById('log');

function note(text) {
  const item = document.createElement('li');
  item.textContent = `${new Date().toLocaleTimeString()}  ${text}`;
  log.prepend(item);
}

const editor = await element.ready;
status.textContent = 'Ready. Open a picture, or drop one onto the editor.';

// Opens a picture fitted to the editor: the page reads its size with the browser (an
// Image reads the header without decoding the pixels) while the control loads it.
async function open(source, label = source) {
  status.textContent = `Opening ${label}…`;
  const started = performance.now();
  const size = pictureSize(source);
  try {
    await editor.SetImage(source);
  } catch (error) {
    status.textContent = error.message;
    note(`SetImage("${label}") failed: ${error.code}`);
    return;
  }
  picture = await size;
  zoomToFit();
  status.textContent = `Opened ${label} in ${Math.round(performance.now() - started)} ms.`;
  note(`SetImage("${label}")`);
}

function pictureSize(source) {
  const image = new Image();
  image.src = source;
  return new Promise((done) => {
    image.onload = () => done({ width: image.naturalWidth, height: image.naturalHeight });
    image.onerror = () => done(null);
  });
}

// Zoom: the picture shown at a percentage (SetImageWidth with a negative width), or
// fitted to the editor (SetImageWidth with the width at which it fits; the control
// never enlarges a picture that way).
const ZOOM_STEPS = [10, 25, 33, 50, 67, 75, 100, 125, 150, 200];
const zoomLevel = document.getElementById('zoom-level');
let picture = null;  // the open picture's size, when the browser could read it
let zoom = 100;      // the percentage shown

function zoomTo(percent) {
  zoom = percent;
  editor.SetImageWidth(-percent);
  zoomLevel.textContent = `${percent} %`;
  note(`SetImageWidth(${-percent})`);
}

function zoomToFit() {
  if (picture === null) return;
  const scale = Math.min(1, element.clientWidth / picture.width, element.clientHeight / picture.height);
  zoom = Math.floor(scale * 100);
  if (scale < 1) {
    const width = Math.floor(picture.width * scale);
    editor.SetImageWidth(width);
    note(`SetImageWidth(${width})`);
  }
  zoomLevel.textContent = `${zoom} %`;
}

document.getElementById('zoom-in').addEventListener('click', () =>
  zoomTo(ZOOM_STEPS.find((step) => step > zoom) ?? ZOOM_STEPS.at(-1)));
document.getElementById('zoom-out').addEventListener('click', () =>
  zoomTo(ZOOM_STEPS.findLast((step) => step < zoom) ?? ZOOM_STEPS[0]));
document.getElementById('zoom-fit').addEventListener('click', zoomToFit);
document.getElementById('zoom-actual').addEventListener('click', () => zoomTo(100));

document.getElementById('open-url').addEventListener('submit', (event) => {
  event.preventDefault();
  open(document.getElementById('url').value.trim());
});
for (const button of document.querySelectorAll('#samples button')) {
  button.addEventListener('click', () => {
    document.getElementById('url').value = button.dataset.src;
    open(button.dataset.src);
  });
}
// A local file reaches the control as an object URL, which it fetches like any other.
function openFile(file) {
  if (!file) return;
  const url = URL.createObjectURL(file);
  open(url, file.name).finally(() => URL.revokeObjectURL(url));
}
document.getElementById('file').addEventListener('change', (event) => openFile(event.target.files[0]));
const dropZone = document.getElementById('drop-zone');
element.addEventListener('dragover', (event) => {
  event.preventDefault();
  dropZone.classList.add('dragging');
});
element.addEventListener('dragleave', () => dropZone.classList.remove('dragging'));
element.addEventListener('drop', (event) => {
  event.preventDefault();
  dropZone.classList.remove('dragging');
  openFile(event.dataTransfer.files[0]);
});

// Drawing: each tool button chooses a tool with the size and colour shown (the eraser
// twice and the airbrush five times as wide as a pen, so that one size suits them
// all); a new size re-chooses the tool. A picked colour becomes the colour to draw with.
const sizeInput = document.getElementById('tool-size');
const colorInput = document.getElementById('tool-color');
const size = () => Math.max(1, sizeInput.valueAsNumber || 1);
const TOOLS = {
  pen: () => editor.SetPen(size()),
  brush: () => editor.SetBrush(size()),
  eraser: () => editor.SetEraser(size() * 2),
  airbrush: () => editor.SetAirBrush(size() * 5),
  stamp: () => editor.SetBitmapBrush('samples/brush.bmp'),
  shape: (button) => {
    editor.SetPen(size());
    editor.SetShape(Number(button.dataset.style));
  },
  fill: () => editor.FillWithSelectedColor(),
  pick: () => editor.SelectColor(),
  select: () => editor.SelectRectangle(),
  cut: () => editor.CutImage(),
  mosaic: () => editor.MosaicImage(),
  text: () => editor.EnterText(),
  none: () => editor.SetNothing(),
};
const SIZED = new Set(['pen', 'brush', 'eraser', 'airbrush', 'shape']);
const toolButtons = [...document.querySelectorAll('#tools button')];
// The control starts with no tool.
let activeTool = toolButtons.find((button) => button.dataset.tool === 'none');
async function chooseTool(button) {
  activeTool = button;
  for (const other of toolButtons) other.setAttribute('aria-pressed', String(other === button));
  await TOOLS[button.dataset.tool](button);
  note(SIZED.has(button.dataset.tool) ? `${button.textContent} (size ${size()})` : button.textContent);
}
for (const button of toolButtons) button.addEventListener('click', () => chooseTool(button));
sizeInput.addEventListener('change', () => chooseTool(activeTool));
const showColor = (rrggbb) => { colorInput.value = `#${rrggbb.toLowerCase()}`; };
colorInput.addEventListener('change', () => {
  showColor(editor.SetColor(colorInput.value.slice(1)));
  note(`SetColor("${colorInput.value.slice(1).toUpperCase()}")`);
});
document.getElementById('color-dialog').addEventListener('click', async () => {
  showColor(await editor.SetColor('DIALOG'));
  note('SetColor("DIALOG")');
});
editor.addEventListener('ColorSelected', (event) => showColor(editor.SetColor(event.detail)));
document.getElementById('apply-box').addEventListener('click', () => {
  const [width, height] = ['box-width', 'box-height'].map((id) => document.getElementById(id).valueAsNumber || 0);
  editor.SetSelectionBox(width, height);
  note(`SetSelectionBox(${width}, ${height})`);
});

// Each adjustment is applied when the control is let go, so that one drag is one
// step of the history.
const gammas = [...document.querySelectorAll('[data-gamma]')];
for (const input of document.querySelectorAll('#sliders input')) {
  const output = input.nextElementSibling;
  input.addEventListener('input', () => { output.value = input.value; });
  input.addEventListener('change', () => {
    if (input.dataset.method) {
      editor[input.dataset.method](input.valueAsNumber);
      note(`${input.dataset.method}(${input.value})`);
    } else {
      const [r, g, b] = gammas.map((gamma) => gamma.valueAsNumber);
      editor.CorrectGamma(r, g, b);
      note(`CorrectGamma(${r}, ${g}, ${b})`);
    }
  });
}
for (const box of document.querySelectorAll('[data-flag]')) {
  box.addEventListener('change', () => {
    editor[box.dataset.flag](box.checked ? 1 : 0);
    note(`${box.dataset.flag}(${box.checked ? 1 : 0})`);
  });
}
for (const input of document.querySelectorAll('.steps input')) {
  input.addEventListener('change', () => {
    editor[input.dataset.method](input.valueAsNumber || 0);
    note(`${input.dataset.method}(${input.valueAsNumber || 0})`);
  });
}

// Effects change the picture at once; rotation also refits it to the editor.
for (const button of document.querySelectorAll('[data-effect]')) {
  button.addEventListener('click', () => {
    const { effect, degrees } = button.dataset;
    if (degrees === undefined) editor[effect]();
    else editor[effect](Number(degrees));
    note(`${effect}(${degrees ?? ''})`);
  });
}
document.getElementById('blend').addEventListener('click', async () => {
  const source = document.getElementById('blend-source').value;
  const factor = document.getElementById('blend-factor').valueAsNumber || 0;
  await editor.BlendImage(source, factor);
  note(`BlendImage("${source}", ${factor})`);
  status.textContent = `Blend factor ${Math.min(Math.max(factor, 0), 200)} % recorded with ${source}; ` +
    'the control mixes no pixels.';
});

// A frame is eight pieces, loaded one by one in the control's order (counter-clockwise
// from the right edge); it shows once the eighth is in. The ribbon is the overlay
// piece, laid over the editor's top-left corner without its magenta.
const FRAME_PLACES = ['right', 'top-right', 'top', 'top-left', 'left', 'bottom-left', 'bottom', 'bottom-right'];
const OVERLAY = -1;
const NO_KEY = -1, MAGENTA = 0xFF00FF;
document.getElementById('frame').addEventListener('click', async () => {
  const style = document.getElementById('frame-style').value;
  const inset = document.getElementById('frame-inset').valueAsNumber || 0;
  status.textContent = `Framing with the ${style} frame…`;
  for (const [orientation, place] of FRAME_PLACES.entries()) {
    await editor.SetFrame(orientation, `samples/frames/${style}-${place}.png`, inset, NO_KEY);
  }
  note(`SetFrame(0…7, "samples/frames/${style}-….png", ${inset}, -1)`);
  if (document.getElementById('frame-overlay').checked) {
    await editor.SetFrame(OVERLAY, 'samples/frames/ribbon.png', 0, MAGENTA);
    note('SetFrame(-1, "samples/frames/ribbon.png", 0, 0xff00ff)');
  }
  status.textContent = `Framed with the ${style} frame.`;
  // A frame leaves the control with no tool at all, not even Move: the tool chosen
  // on the page is chosen again.
  await chooseTool(activeTool);
});
document.getElementById('apply-texture').addEventListener('click', () => {
  const value = document.getElementById('texture').valueAsNumber || 0;
  editor.SetTexture(value);
  note(`SetTexture(${value})`);
});

document.getElementById('apply-scale').addEventListener('click', () => {
  const value = document.getElementById('scale').valueAsNumber;
  const scaled = editor.ScaleImage(value);
  note(`ScaleImage(${value}) -> ${scaled}`);
  status.textContent = scaled ? `Scaled to ${value} %.` : 'Scaling works only before the first edit after opening a picture.';
});
document.getElementById('apply-width').addEventListener('click', () => {
  const value = document.getElementById('image-width').valueAsNumber;
  editor.SetImageWidth(value);
  note(`SetImageWidth(${value})`);
});

// Text: the controls make the font string the control takes, and show the one it
// gives back (from the font dialog too).
const fontFace = document.getElementById('font-face');
const fontSize = document.getElementById('font-size');
const textColor = document.getElementById('text-color');
const fontStyles = Object.fromEntries([...document.querySelectorAll('[data-style]')]
  .map((box) => [box.dataset.style, box]));
function fontString() {
  const { bold, italic, underline, strikeOut } = fontStyles;
  const points = Math.max(1, fontSize.valueAsNumber || 1);
  return [fontFace.value, italic.checked ? 'Italic' : '', bold.checked ? 'Bold' : '', points,
    strikeOut.checked ? 'StrikeOut' : '', underline.checked ? 'Underline' : '', textColor.value.slice(1).toUpperCase(),
  ].join(',');
}
function showFont(font) {
  const [face, italic, bold, points, strikeOut, underline, color] = font.split(',');
  if (![...fontFace.options].some((option) => option.value === face)) fontFace.add(new Option(face));
  fontFace.value = face;
  fontSize.value = points;
  textColor.value = `#${color.toLowerCase()}`;
  for (const [key, value] of Object.entries({ bold, italic, underline, strikeOut })) {
    fontStyles[key].checked = value !== '';
  }
}
async function applyFont() {
  const font = await editor.SetTextFont(fontString());
  if (font) showFont(font);
  note(`SetTextFont("${fontString()}")`);
}
for (const input of [fontFace, fontSize, textColor, ...Object.values(fontStyles)]) {
  input.addEventListener('change', applyFont);
}
document.getElementById('font').addEventListener('submit', (event) => { event.preventDefault(); applyFont(); });
document.getElementById('font-dialog').addEventListener('click', async () => {
  const font = await editor.SetTextFont('DIALOG');
  note(`SetTextFont("DIALOG") -> "${font}"`);
  if (font) showFont(font);
});
const textBackground = document.getElementById('text-background');
const transparentText = document.getElementById('text-transparent');
async function applyBackground() {
  const background = transparentText.checked ? 'TRANSPARENT' : textBackground.value.slice(1).toUpperCase();
  await editor.SetTextBackgroundColor(background);
  note(`SetTextBackgroundColor("${background}")`);
}
textBackground.addEventListener('change', () => {
  transparentText.checked = false;
  applyBackground();
});
transparentText.addEventListener('change', applyBackground);
document.getElementById('background-dialog').addEventListener('click', async () => {
  const color = await editor.SetTextBackgroundColor('DIALOG');
  note(`SetTextBackgroundColor("DIALOG") -> "${color}"`);
  if (color) {
    textBackground.value = `#${color.toLowerCase()}`;
    transparentText.checked = false;
  }
});

// "#rrggbb" as the control takes a colour number: a COLORREF, 0x00BBGGRR.
function colorref(color) {
  const rgb = Number.parseInt(color.slice(1), 16);
  return ((rgb & 0xFF) << 16) | (rgb & 0xFF00) | (rgb >> 16);
}

// Inserting: objects take the key colour and transparency set when they are
// inserted. The sample balloon and icons are drawn on magenta, the key colour the
// page starts with. The control keeps the values only once a picture is open, so
// they are set again before every insertion.
const keyColor = document.getElementById('key-color');
const transparency = document.getElementById('transparency');
function applyTransparency() {
  editor.SetTransparency(colorref(keyColor.value), transparency.valueAsNumber);
}
transparency.addEventListener('input', () => { transparency.nextElementSibling.value = `${transparency.value} %`; });
for (const input of [keyColor, transparency]) {
  input.addEventListener('change', () => {
    applyTransparency();
    note(`SetTransparency(0x${colorref(keyColor.value).toString(16).padStart(6, '0')}, ${transparency.value})`);
  });
}
// New objects go to the next of a few places around the middle of the editor, where
// a picture of any size lies: an object can be dragged only while it overlaps the
// picture.
const PLACES = [[200, 150], [340, 170], [230, 250], [370, 280], [180, 300]];
let inserted = 0;
const nextPlace = () => PLACES[inserted++ % PLACES.length];
async function insertBalloon(picture) {
  const text = document.getElementById('balloon-text').value;
  applyTransparency();
  const [x, y] = nextPlace();
  // The balloon's text goes inside its oval; a label is as large as its text.
  await (picture ? editor.InsertBalloonText(x, y, picture, 30, 24, 170, 78, text)
    : editor.InsertBalloonText(x, y, '', 0, 0, 0, 0, text));
  note(`InsertBalloonText(${x}, ${y}, "${picture}", …, "${text}")`);
}
const BALLOON = 'samples/speech-balloon.png';
document.getElementById('insert-balloon').addEventListener('click', () => insertBalloon(BALLOON));
document.getElementById('insert-label').addEventListener('click', () => insertBalloon(''));
for (const button of document.querySelectorAll('[data-icon]')) {
  button.addEventListener('click', async () => {
    applyTransparency();
    const [x, y] = nextPlace();
    await editor.InsertIcon(x, y, button.dataset.icon);
    note(`InsertIcon(${x}, ${y}, "${button.dataset.icon}")`);
  });
  // The button shows the icon as it will look: without its magenta.
  const image = button.querySelector('img');
  if (image.complete) withoutMagenta(image);
  else image.addEventListener('load', () => withoutMagenta(image), { once: true });
}
function withoutMagenta(image) {
  const canvas = document.createElement('canvas');
  [canvas.width, canvas.height] = [image.naturalWidth, image.naturalHeight];
  const context = canvas.getContext('2d');
  context.drawImage(image, 0, 0);
  const pixels = context.getImageData(0, 0, canvas.width, canvas.height);
  for (let i = 0; i < pixels.data.length; i += 4) {
    if (pixels.data[i] === 255 && pixels.data[i + 1] === 0 && pixels.data[i + 2] === 255) pixels.data[i + 3] = 0;
  }
  context.putImageData(pixels, 0, 0);
  image.src = canvas.toDataURL();
}
const shortcutMenu = document.getElementById('shortcut-menu');
function applyShortcutMenu() {
  editor.EnableShortcutMenu(shortcutMenu.checked ? 1 : 0);
  note(`EnableShortcutMenu(${shortcutMenu.checked ? 1 : 0})`);
}
shortcutMenu.addEventListener('change', applyShortcutMenu);

document.getElementById('undo').addEventListener('click', () => { editor.Undo(); note('Undo()'); });
document.getElementById('redo').addEventListener('click', () => { editor.Redo(); note('Redo()'); });
document.getElementById('verbose').addEventListener('change', (event) => {
  editor.EnableVerbose(event.target.checked ? 1 : 0);
  note(`EnableVerbose(${event.target.checked ? 1 : 0})`);
});
document.getElementById('about').addEventListener('click', () => editor.AboutBox());

function download(blob, name) {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(blob);
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}
// A bitmap is saved into the control's own file system and the `saved` event hands
// the file over; the other types are the same picture encoded by the browser.
editor.addEventListener('saved', (event) => {
  const { fileName, blob } = event.detail;
  download(blob, fileName.split('/').pop());
  note(`saved ${fileName} (${blob.size} bytes)`);
});
document.getElementById('save').addEventListener('click', async () => {
  const type = document.getElementById('save-type').value;
  if (type === 'image/bmp') {
    editor.SaveEditedBitmap('edited.bmp');
    note('SaveEditedBitmap("edited.bmp")');
    return;
  }
  try {
    const blob = await editor.toBlob(type, 0.9);
    download(blob, `edited.${type.slice(6).replace('jpeg', 'jpg')}`);
    note(`toBlob("${type}") (${blob.size} bytes)`);
  } catch (error) {
    status.textContent = error.message;
  }
});
editor.addEventListener('ColorSelected', (event) => note(`event ColorSelected "${event.detail}"`));

applyShortcutMenu();
applyFont();
applyBackground();
open('samples/landscape.jpg');
