/* set_dibits: loads the pixel data of a bitmap file into a bitmap with Windows' own
 * SetDIBits (Wine's, through MinGW) and writes what the bitmap then holds as a 24-bit
 * bottom-up bitmap file; prints SetDIBits' result.
 *
 *   set_dibits IN.bmp OUT.bmp FILL [START LINES]
 *
 * FILL is RRGGBB: the target is a 32-bit DIB section of the file's size filled with
 * that colour first; "new" instead makes a bitmap compatible with the screen, left as
 * it was created, as the picture loader does. START and LINES default to 0 and the
 * height. The header and its colour table are passed from the file as they stand, the
 * pixel data from the file's data offset to its end.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

int main(int argc, char **argv) {
  if (argc != 4 && argc != 6) {
    fprintf(stderr, "usage: set_dibits IN.bmp OUT.bmp FILL|new [START LINES]\n");
    return 2;
  }
  FILE *f = fopen(argv[1], "rb");
  if (!f) {
    perror(argv[1]);
    return 2;
  }
  static unsigned char file[1 << 20];
  if (fread(file, 1, sizeof file, f) < 54) {
    fprintf(stderr, "%s: too short\n", argv[1]);
    return 2;
  }
  fclose(f);
  const BITMAPINFO *info = (const BITMAPINFO *)(file + 14);
  DWORD offset;
  memcpy(&offset, file + 10, 4);
  int w = info->bmiHeader.biWidth, h = abs(info->bmiHeader.biHeight);
  UINT start = argc == 6 ? atoi(argv[4]) : 0, lines = argc == 6 ? atoi(argv[5]) : h;

  HDC screen = GetDC(NULL), dc = CreateCompatibleDC(screen);
  BITMAPINFO bi;
  memset(&bi, 0, sizeof bi);
  bi.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
  bi.bmiHeader.biWidth = w;
  bi.bmiHeader.biHeight = h;
  bi.bmiHeader.biPlanes = 1;
  bi.bmiHeader.biBitCount = 32;
  bi.bmiHeader.biCompression = BI_RGB;
  void *bits = NULL;
  HBITMAP bmp;
  if (!strcmp(argv[3], "new")) {
    bmp = CreateCompatibleBitmap(screen, w, h);
  } else {
    bmp = CreateDIBSection(NULL, &bi, DIB_RGB_COLORS, &bits, NULL, 0);
    unsigned long c = strtoul(argv[3], NULL, 16);
    for (int i = 0; i < w * h; i++) ((DWORD *)bits)[i] = c;
  }
  int result = SetDIBits(dc, bmp, start, lines, file + offset, info, DIB_RGB_COLORS);
  printf("%s: SetDIBits -> %d\n", argv[1], result);

  int row = (w * 3 + 3) & ~3;
  DWORD *pixels = malloc((size_t)w * h * 4);
  GetDIBits(dc, bmp, 0, h, pixels, &bi, DIB_RGB_COLORS);
  FILE *out = fopen(argv[2], "wb");
  if (!out) {
    perror(argv[2]);
    return 2;
  }
  BITMAPFILEHEADER fh;
  BITMAPINFOHEADER ih;
  memset(&fh, 0, sizeof fh);
  memset(&ih, 0, sizeof ih);
  fh.bfType = 0x4D42;
  fh.bfOffBits = 54;
  fh.bfSize = 54 + row * h;
  ih.biSize = 40;
  ih.biWidth = w;
  ih.biHeight = h;
  ih.biPlanes = 1;
  ih.biBitCount = 24;
  ih.biSizeImage = row * h;
  fwrite(&fh, 14, 1, out);
  fwrite(&ih, 40, 1, out);
  unsigned char *line = calloc(row, 1);
  for (int y = 0; y < h; y++) {
    for (int x = 0; x < w; x++) memcpy(line + 3 * x, pixels + (size_t)y * w + x, 3);
    fwrite(line, row, 1, out);
  }
  fclose(out);
  return 0;
}
