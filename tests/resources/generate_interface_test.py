"""The interface generator refuses a malformed description with FILE:LINE: what is wrong,
exit status 1 and nothing written. Each case is a small valid description with one
fault, so that it fails for that fault alone."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
GENERATOR = ROOT / "src/resources/generate_interface.py"
TEMPLATE = ROOT / "hosts/web/image-edit-control.d.ts.in"

# A case adds a method as line 10, after the others, or an event as line 16.
VALID = """\
[version(1.1), lcid(0x0409), uuid("00000000-0000-0000-0000-00000000000A")]
library L
{
  [helpstring("Methods"), hidden, uuid("00000000-0000-0000-0000-00000000000B")]
  dispinterface _DMethods
  {
    methods:
    [id(1), helpstring("Loads")] void SetImage([picture] BSTR lpszFilePath);
    [id(2), helpstring("Grays")] void GrayImage([editor(bool)] BOOL bGraying);
  };
  [helpstring("Events"), uuid("00000000-0000-0000-0000-00000000000C")]
  dispinterface _DEvents
  {
    methods:
    [id(1), helpstring("Picked")] void ColorSelected(BSTR lpszColor);
  };
  [helpstring("Control"), control, uuid("00000000-0000-0000-0000-00000000000D")]
  coclass Control
  {
    [default] dispinterface _DMethods;
    [default, source] dispinterface _DEvents;
  };
};
"""
METHOD_LINE = 10
EVENT_LINE = 16


def with_method(line):
    lines = VALID.splitlines(keepends=True)
    return "".join(lines[:METHOD_LINE - 1] + [line + "\n"] + lines[METHOD_LINE - 1:])


def with_event(line):
    lines = VALID.splitlines(keepends=True)
    return "".join(lines[:EVENT_LINE - 1] + [line + "\n"] + lines[EVENT_LINE - 1:])


# (description, line, what the message says)
FAULTS = [
    (with_method('[id(3), helpstring("Pen")] void SetPen(short nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize has unknown type 'short' (known: int, BSTR, BOOL)"),
    (with_method('[id(3), helpstring("Scale")] long ScaleImage(int nScaleFactor);'), METHOD_LINE,
     "ScaleImage: unknown result type 'long'"),
    (with_method('[id(1), helpstring("Undo")] void Undo();'), METHOD_LINE,
     "Undo has the same DISPID as SetImage"),
    # Hosts find methods by name in any case.
    (with_method('[id(3), helpstring("Again")] void setimage();'), METHOD_LINE,
     "setimage has the same name as SetImage"),
    (with_method('[helpstring("Undo")] void Undo();'), METHOD_LINE, "Undo has no id(...)"),
    (with_method('[id(3)] void Undo();'), METHOD_LINE, "Undo has no helpstring(...)"),
    (with_method('[id(three), helpstring("Undo")] void Undo();'), METHOD_LINE, "attribute 'id' takes a number"),
    (with_method('[id(3), helpstring("Undo"), propget] void Undo();'), METHOD_LINE,
     "unknown attribute 'propget' on a method (known: id, helpstring, editor, dialog, lengthy)"),
    (with_method('[id(3), helpstring("Undo"), id(4)] void Undo();'), METHOD_LINE, "attribute 'id' given twice"),
    (with_method('[id(3), helpstring("Clear")] void Clear(BOOL bImage);'), METHOD_LINE,
     "Clear: parameter bImage is a BOOL: say whether the editor receives it as editor(bool) or editor(long)"),
    (with_method('[id(3), helpstring("Clear")] void Clear([editor(int)] BOOL bImage);'), METHOD_LINE,
     "Clear: parameter bImage is a BOOL"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([editor(long)] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: only a BOOL parameter says what the editor receives"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([picture] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: only a BSTR parameter can be a picture"),
    (with_method('[id(3), helpstring("Box")] void SetBox(int nWidth, int nWidth);'), METHOD_LINE,
     "SetBox: two parameters are named nWidth"),
    (with_method('[id(3), helpstring("Save")] void Save([savefile] BSTR a, [savefile] BSTR b);'), METHOD_LINE,
     "Save: only one parameter may be a savefile"),
    (with_method('[id(3), helpstring("Color")] BSTR SetColor([dialog(file, "DIALOG")] BSTR lpszColor);'),
     METHOD_LINE, "SetColor: parameter lpszColor: unknown dialog 'file' (known: color, font)"),
    (with_method('[id(3), helpstring("Color")] BSTR SetColor([dialog(color, "dialog")] BSTR lpszColor);'),
     METHOD_LINE, 'write the dialog value "dialog" in upper case'),
    (with_method('[id(3), helpstring("Color")] BSTR SetColor([dialog(color)] BSTR lpszColor);'),
     METHOD_LINE, "SetColor: parameter lpszColor: name the values that open the dialog"),
    (with_method('[id(3), helpstring("Box"), dialog(color)] void About();'), METHOD_LINE,
     "About: a method itself opens only the dialog about"),
    (with_method('[id(3), helpstring("Ends */ here")] void Undo();'), METHOD_LINE,
     "a help string cannot hold */"),
    # Two methods handing one editor operation different types cannot both compile.
    (with_method('[id(3), helpstring("Inverts"), editor(GrayImage)] void InvertImage([editor(long)] BOOL b);'),
     METHOD_LINE, "InvertImage calls CImageEditWnd::GrayImage as void(long), but GrayImage calls it as void(bool)"),
    (with_method('[id(3), helpstring("Undo)] void Undo();'), METHOD_LINE,
     "a string must end on its line and holds no backslash"),
    (with_method('[id(3), helpstring("Undo")] void Undo() @'), METHOD_LINE, "unexpected character '@'"),
    # A missing semicolon is noticed at the next token, on the next line.
    (with_method('[id(3), helpstring("Undo")] void Undo()'), METHOD_LINE + 1, "expected ';', found '}'"),
    (with_method('[id(3), helpstring("Colour"), lengthy] BSTR GetColor();'), METHOD_LINE,
     "GetColor: only a call that returns nothing and opens no dialog can wait for the next frame"),
    (with_event('[id(2), helpstring("Scaled")] BSTR ImageScaled(int nScaleFactor);'), EVENT_LINE,
     "ImageScaled: an event has no result (void)"),
    (with_event('[id(2), helpstring("Scaled")] void ImageScaled([picture] BSTR lpszFile);'), EVENT_LINE,
     "unknown attribute 'picture' on an event's parameter (known: helpstring)"),
    (with_method('[id(3), helpstring("Load")] void Load([range(0, 9, clamped)] BSTR lpszFile);'), METHOD_LINE,
     "Load: parameter lpszFile: only an int parameter has a range"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([range(9, 0, clamped)] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: the range 9 to 0 is empty"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([range(0, 1.5, clamped)] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: a range's bounds are whole numbers"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([range(0, 9, wrapped)] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: say what other values do: clamped or ignored"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([range(0, 9)] int nPenSize);'), METHOD_LINE,
     "attribute 'range' takes two numbers and a name"),
    (with_method('[id(3), helpstring("Pen")] void SetPen([helpstring("a */ b")] int nPenSize);'), METHOD_LINE,
     "SetPen: parameter nPenSize: a help string cannot hold */"),
    (VALID.replace("    [default, source] dispinterface _DEvents;\n", ""), 18,
     "the coclass names no default source"),
    (VALID.replace("[default] dispinterface _DMethods", "[default] dispinterface _DMissing"), 20,
     "no dispinterface is named _DMissing"),
    (VALID + "library M {};\n", 24, "expected the end of the file after the library, found 'library'"),
    (VALID.replace(', uuid("00000000-0000-0000-0000-00000000000C")', ""), 12, "_DEvents has no uuid(...)"),
    (VALID.replace("0000000D", "0000000G"), 18, '"00000000-0000-0000-0000-00000000000G" is no GUID'),
    (VALID.replace("0000000D", "0000000B"), 18, "CLSID_Control has the same uuid as DIID__DMethods"),
]


class GeneratorTest(unittest.TestCase):
    def run_generator(self, mode, description, template=None):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        path = folder / "interface.odl"
        path.write_text(description, encoding="utf-8")
        output = folder / "out"
        inputs = [str(template)] if template else []
        result = subprocess.run([sys.executable, str(GENERATOR), mode, str(path), *inputs, str(output)],
                                capture_output=True, text=True, env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"})
        return path, output, result

    def test_the_valid_description_gives_every_file(self):
        for mode, template, count in (("cpp", None, 5), ("typelib", None, 1), ("web", TEMPLATE, 2)):
            _, output, result = self.run_generator(mode, VALID, template)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(len(list(output.iterdir())), count)

    def test_a_fault_is_reported_at_its_line_and_nothing_is_written(self):
        for description, line, message in FAULTS:
            with self.subTest(message=message):
                path, output, result = self.run_generator("cpp", description)
                self.assertEqual(result.returncode, 1)
                self.assertTrue(result.stderr.startswith(f"generate_interface.py: {path}:{line}: "), result.stderr)
                self.assertIn(message, result.stderr)
                self.assertFalse(output.exists())

    def test_arguments_are_documented_in_the_declaration_and_the_reference(self):
        documented = with_method('[id(3), helpstring("Sets the brightness")] void BrightenImage('
                                 '[range(-5, 200, clamped), helpstring("100 leaves it")] int nBrightness);')
        _, output, result = self.run_generator("web", documented, TEMPLATE)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("   * Sets the brightness.\n   * @param nBrightness 100 leaves it (-5 to 200, clamped)\n   */\n"
                      "  BrightenImage(nBrightness: number): void;",
                      (output / "image-edit-control.d.ts").read_text(encoding="utf-8"))
        _, output, result = self.run_generator("reference", documented, TEMPLATE)
        self.assertEqual(result.returncode, 0, result.stderr)
        page = (output / "REFERENCE.md").read_text(encoding="utf-8")
        brighten = page[page.index("### BrightenImage"):]
        self.assertIn("| `nBrightness` | `number` | -5 to 200, clamped | 100 leaves it |", brighten)
        self.assertIn("Returns nothing, at once.", brighten)
        loading = page[page.index("### SetImage"):page.index("### GrayImage")]
        self.assertIn("`SetImage(lpszFilePath: string): Promise<void>`", loading)
        self.assertIn("Returns a Promise, always", loading)
        # A flag takes a number or a boolean, which a table cell must not split.
        self.assertIn("| `bGraying` | `number \\| boolean` |  |  |", page)
        # Every method and event is listed, and the element's own members and events
        # come from the template's documentation.
        self.assertIn("| [GrayImage](#grayimage) | `void` | Grays |", page)
        self.assertIn("### ColorSelected", page)
        self.assertIn("| `readonly ready: Promise<ImageEditControl>` |", page)
        self.assertIn("| `saved: CustomEvent<{ fileName: string; blob: Blob }>` |", page)

    def test_the_committed_reference_is_what_the_description_gives(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        result = subprocess.run([sys.executable, str(GENERATOR), "reference", str(ROOT / "src/resources/image_edit_ctrl.odl"),
                                 str(TEMPLATE), str(folder)], capture_output=True, text=True,
                                env={**os.environ, "PYTHONDONTWRITEBYTECODE": "1"})
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual((ROOT / "REFERENCE.md").read_text(encoding="utf-8"),
                         (folder / "REFERENCE.md").read_text(encoding="utf-8"),
                         "REFERENCE.md is out of date; remake it with: python3 src/resources/generate_interface.py "
                         "reference src/resources/image_edit_ctrl.odl hosts/web/image-edit-control.d.ts.in .")

    def test_the_type_library_declares_every_type_function_and_parameter(self):
        _, output, result = self.run_generator("typelib", VALID)
        self.assertEqual(result.returncode, 0, result.stderr)
        source = (output / "type_library_text.cpp").read_text(encoding="utf-8")
        text = source[source.index('R"typelib(') + len('R"typelib('):source.index(')typelib"')]
        self.assertEqual(text.splitlines()[1:], [
            'library L {00000000-0000-0000-0000-00000000000A} 1.1 0x0409 ""',
            'dispinterface _DMethods {00000000-0000-0000-0000-00000000000B} dispatchable,hidden "Methods"',
            'function 1 SetImage VOID "Loads"',
            "param BSTR lpszFilePath",
            # A flag is a 32-bit integer in the type library.
            'function 2 GrayImage VOID "Grays"',
            "param I4 bGraying",
            'dispinterface _DEvents {00000000-0000-0000-0000-00000000000C} dispatchable "Events"',
            'function 1 ColorSelected VOID "Picked"',
            "param BSTR lpszColor",
            'coclass Control {00000000-0000-0000-0000-00000000000D} creatable,control "Control"',
            "interface default _DMethods",
            "interface default,source _DEvents",
        ])
        # A description with a fault gives no type library either.
        path, output, result = self.run_generator("typelib", FAULTS[0][0])
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"{path}:{FAULTS[0][1]}: {FAULTS[0][2]}", result.stderr)
        self.assertFalse(output.exists())

    def test_the_template_must_have_each_generated_part(self):
        folder = Path(self.enterContext(tempfile.TemporaryDirectory()))
        template = folder / "element.d.ts.in"
        template.write_text(TEMPLATE.read_text(encoding="utf-8").replace("// @SINK@", ""), encoding="utf-8")
        _, _, result = self.run_generator("web", VALID, template)
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"{template}:", result.stderr)
        self.assertIn("no line // @SINK@", result.stderr)


if __name__ == "__main__":
    unittest.main()
