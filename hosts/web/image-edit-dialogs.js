// The control's dialogs as page dialogs: message boxes, the module's dialogs (the
// About box, the property page), the colour dialog and the font dialog. Each is a modal <dialog> in the element's shadow root,
// driven by the keyboard (Tab between fields, Enter for OK, Escape for Cancel) as
// well as the mouse.

export const DIALOG_STYLE = `
  dialog.box { font: 13px/1.4 system-ui, sans-serif; border: 1px solid #8a8f98; border-radius: 6px; padding: 0;
               min-width: 280px; box-shadow: 0 10px 30px rgba(0, 0, 0, .25); }
  dialog.box::backdrop { background: rgba(0, 0, 0, .15); }
  dialog.box header { background: #f1f3f6; padding: 6px 12px; font-weight: 600; border-bottom: 1px solid #dde1e6; }
  dialog.box .body { padding: 14px 12px; white-space: pre-wrap; display: flex; gap: 10px; align-items: center; }
  dialog.box .stop { color: #fff; background: #d93025; border-radius: 50%; width: 24px; height: 24px; flex: none;
                     display: grid; place-items: center; font-weight: 700; }
  dialog.box footer { padding: 0 12px 12px; display: flex; justify-content: flex-end; gap: 8px; }
  dialog.box button { min-width: 72px; padding: 4px 10px; }
  dialog.box input[type=color] { width: 64px; height: 32px; }
  dialog.box .chooser { display: grid; gap: 8px; justify-items: start; }
  dialog.box .custom-colors { display: grid; grid-template-columns: repeat(8, 18px); gap: 4px; }
  dialog.box .custom-colors button { min-width: 0; width: 18px; height: 18px; padding: 0; border: 1px solid #8a8f98; }
  dialog.box .custom-colors button.selected { outline: 2px solid #4c8dff; outline-offset: 1px; }
  dialog.box .font-chooser { display: grid; grid-template-columns: auto auto; gap: 8px 16px; white-space: normal;
                             align-items: start; }
  dialog.box .font-chooser label { display: grid; gap: 3px; }
  dialog.box .font-chooser select { min-width: 150px; }
  dialog.box .font-chooser input[type=number] { width: 64px; }
  dialog.box .font-chooser fieldset { border: 1px solid #dde1e6; border-radius: 4px; margin: 0; padding: 4px 8px 6px;
                                      display: grid; gap: 2px; }
  dialog.box .font-chooser fieldset label { display: flex; gap: 6px; align-items: center; }
  dialog.box .laid-out { position: relative; padding: 0; display: block; }
  dialog.box .laid-out > * { position: absolute; box-sizing: border-box; margin: 0; }
  dialog.box .laid-out button { min-width: 0; padding: 0; }
  dialog.box .laid-out button.default { outline: 1px solid #000; }
  dialog.box .font-chooser .sample { grid-column: 1 / -1; border: 1px solid #dde1e6; border-radius: 4px; height: 56px;
                                     display: grid; place-items: center; overflow: hidden; white-space: nowrap;
                                     line-height: normal; }
`;

// A modal dialog in `root`, as the control's own dialogs are; resolves with the value
// of the button that closed it (false for Escape). `extra` goes below the text. Enter
// on anything but a button presses the first button.
export function openDialog(root, title, text, iconHtml, buttons, extra = null) {
  const dialog = document.createElement('dialog');
  dialog.className = 'box';
  // A box that only tells something is an alert; one with fields to fill is not.
  dialog.setAttribute('role', extra ? 'dialog' : 'alertdialog');
  dialog.setAttribute('aria-label', title);
  const header = document.createElement('header');
  header.textContent = title;
  const body = document.createElement('div');
  body.className = 'body';
  body.innerHTML = iconHtml;
  const message = document.createElement('span');
  message.className = 'text';
  message.textContent = text;
  body.append(message);
  if (extra) body.append(extra);
  const footer = document.createElement('footer');
  const closed = new Promise((resolve) => {
    for (const [label, value] of buttons) {
      const button = document.createElement('button');
      button.type = 'button';
      button.textContent = label;
      button.addEventListener('click', () => { dialog.close(); resolve(value); });
      footer.append(button);
    }
    dialog.addEventListener('cancel', () => resolve(false));
    dialog.addEventListener('close', () => { dialog.remove(); resolve(false); });
  });
  dialog.addEventListener('keydown', (event) => {
    if (event.key === 'Enter' && !(event.target instanceof HTMLButtonElement)) {
      event.preventDefault();
      footer.querySelector('button').click();
    }
  });
  dialog.append(header, body, footer);
  root.append(dialog);
  dialog.showModal();
  footer.querySelector('button').focus();
  return closed;
}

// The colour dialog: resolves with the chosen colour as "#rrggbb", null on Cancel.
// Its sixteen custom colours (`custom`, "#rrggbb" each, changed in place) are boxes to
// pick from; "Add to Custom Colors" puts the colour being chosen into the selected box
// and selects the next, and what is added stays added, even on Cancel.
export async function askColor(root, initial, custom) {
  const chooser = document.createElement('div');
  chooser.className = 'chooser';
  const input = document.createElement('input');
  input.type = 'color';
  input.value = initial;
  input.setAttribute('aria-label', 'Color');
  const boxes = document.createElement('div');
  boxes.className = 'custom-colors';
  let selected = 0;
  const swatches = custom.map((color, i) => {
    const swatch = document.createElement('button');
    swatch.type = 'button';
    swatch.title = `Custom color ${i + 1}`;
    swatch.style.background = color;
    swatch.addEventListener('click', () => {
      select(i);
      input.value = custom[i];
    });
    return swatch;
  });
  const select = (i) => {
    selected = i;
    swatches.forEach((swatch, j) => swatch.classList.toggle('selected', j === i));
  };
  select(0);
  const add = document.createElement('button');
  add.type = 'button';
  add.textContent = 'Add to Custom Colors';
  add.addEventListener('click', () => {
    custom[selected] = input.value;
    swatches[selected].style.background = input.value;
    select((selected + 1) % swatches.length);
  });
  boxes.append(...swatches);
  chooser.append(input, boxes, add);
  const ok = await openDialog(root, 'Color', '', '', [['OK', true], ['Cancel', false]], chooser);
  return ok ? input.value : null;
}

const FONT_SIZES = [8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72];
export const MAX_FONT_POINTS = 999;

// The font dialog, starting from `start` ({face, points, bold, italic, underline,
// strikeOut, color "#rrggbb"}): resolves with the person's choice in the same shape,
// or null on Cancel. `faces` are the faces to offer (the starting face is added when
// it is not among them); the sample shows `sample` in the font being chosen.
export async function askFont(root, start, faces, sample) {
  const chooser = document.createElement('div');
  chooser.className = 'font-chooser';
  const field = (label, control) => {
    const wrapper = document.createElement('label');
    wrapper.append(label, control);
    return wrapper;
  };
  const face = document.createElement('select');
  face.size = 5;
  const offered = faces.includes(start.face) || start.face === '' ? faces : [start.face, ...faces];
  for (const name of offered) face.append(new Option(name, name, false, name === start.face));
  if (face.selectedIndex < 0) face.selectedIndex = 0;

  const size = document.createElement('input');
  size.type = 'number';
  size.min = '1';
  size.max = String(MAX_FONT_POINTS);
  size.value = String(Math.min(Math.max(start.points, 1), MAX_FONT_POINTS));
  const sizes = document.createElement('datalist');
  sizes.id = 'font-sizes';
  sizes.append(...FONT_SIZES.map((points) => new Option(String(points))));
  size.setAttribute('list', sizes.id);

  const checks = {};
  const group = (legend, names) => {
    const set = document.createElement('fieldset');
    const caption = document.createElement('legend');
    caption.textContent = legend;
    set.append(caption);
    for (const [key, label] of names) {
      const box = document.createElement('input');
      box.type = 'checkbox';
      box.checked = start[key];
      checks[key] = box;
      const wrapper = document.createElement('label');
      wrapper.append(box, label);
      set.append(wrapper);
    }
    return set;
  };
  const color = document.createElement('input');
  color.type = 'color';
  color.value = start.color;

  const preview = document.createElement('div');
  preview.className = 'sample';
  preview.textContent = sample;
  preview.setAttribute('aria-hidden', 'true');
  const choice = () => ({
    face: face.value,
    points: Math.min(Math.max(Math.round(size.valueAsNumber) || start.points, 1), MAX_FONT_POINTS),
    bold: checks.bold.checked,
    italic: checks.italic.checked,
    underline: checks.underline.checked,
    strikeOut: checks.strikeOut.checked,
    color: color.value,
  });
  const showSample = () => {
    const chosen = choice();
    Object.assign(preview.style, {
      fontFamily: `"${chosen.face}"`, fontSize: `${Math.min(chosen.points, 36)}pt`,
      fontWeight: chosen.bold ? '700' : '400', fontStyle: chosen.italic ? 'italic' : 'normal',
      textDecoration: [chosen.underline && 'underline', chosen.strikeOut && 'line-through'].filter(Boolean).join(' ')
        || 'none',
      color: chosen.color,
    });
  };
  chooser.addEventListener('input', showSample);
  chooser.addEventListener('change', showSample);
  chooser.append(
    field('Font', face), field('Size', size), group('Style', [['bold', 'Bold'], ['italic', 'Italic']]),
    group('Effects', [['strikeOut', 'Strikeout'], ['underline', 'Underline']]), field('Color', color), preview, sizes);
  showSample();
  const closed = openDialog(root, 'Font', '', '', [['OK', true], ['Cancel', false]], chooser);
  face.focus();
  return (await closed) ? choice() : null;
}

// A picture of the module's ({width, height, rgba}) as a URL an <img> or a cursor takes.
export function artworkUrl(art) {
  const canvas = document.createElement('canvas');
  canvas.width = art.width;
  canvas.height = art.height;
  canvas.getContext('2d').putImageData(new ImageData(art.rgba, art.width, art.height), 0, 0);
  return canvas.toDataURL('image/png');
}

// One of the module's dialogs as the engine laid it out: each item where its dialog
// units put it, in pixels of the dialog's own font, under the caption. Resolves with
// the id of the button that closed it (2, IDCANCEL, for Escape).
export function openResourceDialog(root, layout) {
  const dialog = document.createElement('dialog');
  dialog.className = 'box';
  dialog.setAttribute('aria-label', layout.caption);
  const header = document.createElement('header');
  header.textContent = layout.caption;
  const body = document.createElement('div');
  body.className = 'laid-out';
  Object.assign(body.style, {
    width: `${layout.width}px`, height: `${layout.height}px`,
    font: `${layout.fontPixels}px '${layout.fontFace}', 'Liberation Sans', Arial, sans-serif`,
  });
  let closedWith = 2;
  for (const item of layout.items) {
    let element;
    if (item.kind === 'icon') {
      element = document.createElement('img');
      element.alt = '';
      if (item.picture) element.src = artworkUrl(item.picture);
    } else if (item.kind === 'text') {
      element = document.createElement('span');
      element.textContent = item.text;
    } else {
      element = document.createElement('button');
      element.type = 'button';
      element.textContent = item.text;
      element.classList.toggle('default', item.kind === 'default');
      element.addEventListener('click', () => { closedWith = item.id; dialog.close(); });
    }
    Object.assign(element.style, {
      left: `${item.left}px`, top: `${item.top}px`, width: `${item.width}px`, height: `${item.height}px`,
    });
    body.append(element);
  }
  dialog.append(header, body);
  const closed = new Promise((resolve) => {
    dialog.addEventListener('close', () => { dialog.remove(); resolve(closedWith); });
  });
  root.append(dialog);
  dialog.showModal();
  (body.querySelector('button.default') ?? body.querySelector('button'))?.focus();
  return closed;
}
