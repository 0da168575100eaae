// A page written in TypeScript against the element's declaration, which
// scripts/build-web.sh puts beside the element. types.test.mjs compiles it: every call
// here must type-check, and every call marked @ts-expect-error must be refused, so a
// declaration that is too loose fails as surely as one that is wrong.
import { ImageEditLoadError, type ImageEditControl } from '../../build/web/image-edit-control.js';

export async function usesTheElement(): Promise<void> {
  const element = document.querySelector('image-edit-control');
  if (element === null) return;
  const editor: ImageEditControl = await element.ready;

  // Loading waits for the picture; most calls return at once, with their result.
  await editor.SetImage('photos/beach.jpg');
  await editor.InsertBalloonText(10, 10, 'balloon.png', 20, 20, 120, 60, '48656C6C6F');
  editor.BrightenImage(130);
  editor.CorrectGamma(110, 100, 90);
  editor.GrayImage(true);
  editor.InvertImage(1);
  editor.Clear(0);
  editor.SaveEditedBitmap('beach.bmp');
  const scaled: boolean = editor.ScaleImage(50);
  const color: string | null = editor.GetColor();
  const set: string | null = editor.SetColor('FF0000');
  const background: string | null = editor.SetTextBackgroundColor('TRANSPARENT');
  // A dialog waits for the person, whatever case its keyword is written in.
  const chosen: string = await editor.SetColor('Dialog');
  const font: string = await editor.SetTextFont('');
  const backgroundChosen: string = await editor.SetTextBackgroundColor('DIALOG');
  await editor.AboutBox();
  // A string not known while compiling may open the dialog or not.
  const typed = String(scaled);
  const either: string | null | Promise<string> = editor.SetColor(typed);

  editor.addEventListener('ColorSelected', (event) => console.log(event.detail.toUpperCase()));
  editor.addEventListener('ImageScaled', (event) => console.log(event.detail.toFixed(0)));
  editor.addEventListener('saved', (event) => console.log(event.detail.fileName, event.detail.blob.size));
  const cookie: number = editor.connectSink({ ColorSelected: (picked) => console.log(picked.toLowerCase()) });
  editor.disconnectSink(cookie);
  const created: ImageEditControl = document.createElement('image-edit-control');
  // The element's own results and events beside the control's.
  const png: Blob = await editor.toBlob();
  const jpeg: Blob = await editor.toBlob('image/jpeg', 0.9);
  const waiting: boolean = editor.busy;
  editor.addEventListener('load', (event) => console.log(event.detail.method, event.detail.source.length));
  editor.addEventListener('error', (event) => console.log(event.detail.code.toFixed(0), event.detail.message));
  try {
    await editor.SetImage('missing.jpg');
  } catch (failure) {
    if (failure instanceof ImageEditLoadError) console.log(failure.code.toFixed(0), failure.source, failure.method);
  }
  console.log(png.size, jpeg.type, waiting);
  console.log(color, set, background, chosen, font, backgroundChosen, either, created);

  // @ts-expect-error a pen size is a number
  editor.SetPen('5');
  // @ts-expect-error a picture is named by a string
  editor.SetImage(42);
  // @ts-expect-error a flag is a number or a boolean
  editor.GrayImage('on');
  // @ts-expect-error CorrectGamma takes three gammas
  editor.CorrectGamma(110, 100);
  // @ts-expect-error GetColor takes nothing
  editor.GetColor('FF0000');
  // @ts-expect-error no method has that name
  editor.Sharpen(3);
  // @ts-expect-error loading answers later
  const loaded: void = editor.SetImage('a.jpg');
  // @ts-expect-error the colour dialog answers later
  const now: string | null = editor.SetColor('DIALOG');
  // @ts-expect-error a colour string is answered at once
  const later: Promise<string> = editor.SetColor('00FF00');
  // @ts-expect-error the string may be null before the control exists
  const notNull: string = editor.GetColor();
  // @ts-expect-error ScaleImage answers whether it scaled
  const factor: number = editor.ScaleImage(2);
  // @ts-expect-error ImageScaled's detail is the scale factor
  editor.addEventListener('ImageScaled', (event) => console.log(event.detail.toUpperCase()));
  // @ts-expect-error a sink's ColorSelected receives the colour string
  editor.connectSink({ ColorSelected: (picked: number) => console.log(picked) });
  // @ts-expect-error the quality is a number
  editor.toBlob('image/jpeg', 'high');
  // @ts-expect-error busy is for reading
  editor.busy = true;
  // @ts-expect-error a failed load's code is a number
  editor.addEventListener('error', (event) => console.log(event.detail.code.toUpperCase()));
  console.log(loaded, now, later, notNull, factor);
}
