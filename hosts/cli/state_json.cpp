#include "state_json.h"

#include <initializer_list>

#include "editor/image_edit_wnd.h"
#include "json_writer.h"
#include "script_parser.h"

namespace script {
namespace {

void IntArray(JsonWriter& json, std::string_view key, std::initializer_list<int> values) {
  json.Key(key).BeginArray();
  for (int value : values) json.Value(value);
  json.EndArray();
}

void BoolArray(JsonWriter& json, std::string_view key, std::initializer_list<bool> values) {
  json.Key(key).BeginArray();
  for (bool value : values) json.Value(value);
  json.EndArray();
}

void Settings(JsonWriter& json, const AdjustmentSettings& settings) {
  json.Key("settings").BeginObject();
  json.Key("brightness").Value(settings.brightness);
  json.Key("contrast").Value(settings.contrast);
  json.Key("hue").Value(settings.hue);
  json.Key("saturation").Value(settings.saturation);
  json.Key("gammaR").Value(settings.redGamma);
  json.Key("gammaG").Value(settings.greenGamma);
  json.Key("gammaB").Value(settings.blueGamma);
  json.Key("gray").Value(settings.gray);
  json.Key("invert").Value(settings.invert);
  json.Key("sharpen").Value(settings.sharpenSteps);
  json.Key("smooth").Value(settings.smoothSteps);
  json.Key("whiten").Value(settings.whitenSteps);
  json.Key("blend").Value(settings.blend);
  json.EndObject();
}

// The live objects front first, as the z-order lists them.
void ZOrder(JsonWriter& json, const CImageEditWnd& editor) {
  json.Key("zorder").BeginArray();
  for (int i = 0; i < editor.m_objectCount && i < kMaxInsertedObjects; ++i) json.Value(editor.m_zOrder[i]);
  json.EndArray();
}

}  // namespace

std::string EditorStateJson(const CImageEditWnd& editor) {
  JsonWriter json;
  json.BeginObject();
  json.Key("toolMode").Value(editor.m_toolMode);
  json.Key("savedToolMode").Value(editor.m_savedToolMode);
  json.Key("color").Value(FormatRgbHex(editor.m_color));
  json.Key("penSize").Value(editor.m_penSize);
  json.Key("toolWidth").Value(editor.m_toolWidth);
  json.Key("shapeStyle").Value(editor.m_shapeStyle);
  json.Key("curveStage").Value(editor.m_curveStage);
  json.Key("scale").Value(editor.m_displayScale);
  const RECT& image = editor.m_imageRect;
  IntArray(json, "imageRect", {image.left, image.top, image.right, image.bottom});
  IntArray(json, "displayed", {editor.m_displayedWidth, editor.m_displayedHeight});
  IntArray(json, "original", {editor.m_originalWidth, editor.m_originalHeight});
  IntArray(json, "scroll", {editor.m_hScrollPos, editor.m_vScrollPos});
  BoolArray(json, "bars", {editor.m_hScrollShown, editor.m_vScrollShown});
  IntArray(json, "view", {editor.m_viewWidth, editor.m_viewHeight});
  json.Key("history").BeginObject();
  json.Key("count").Value(editor.m_historyCount);
  json.Key("index").Value(editor.m_historyIndex);
  json.EndObject();
  // Inserted objects carry no readable geometry yet; the list stays empty until they do.
  json.Key("objects").BeginArray().EndArray();
  ZOrder(json, editor);
  json.Key("selectedObject").Value(editor.m_selectedObject);
  IntArray(json, "selectionBox",
           {editor.m_selectionBoxX, editor.m_selectionBoxY, editor.m_selectionBoxWidth,
            editor.m_selectionBoxHeight});
  json.Key("frame").Value(editor.m_framePresent);
  json.Key("textShown").Value(IsWindowVisible(editor.m_textEdit.m_hWnd) == TRUE);
  Settings(json, editor.m_settings);
  json.Key("scalingAllowed").Value(editor.m_scalingAllowed);
  json.Key("verbose").Value(editor.m_verbose);
  json.Key("gdiObjects").Value(platform::LiveGdiObjects().total());
  json.EndObject();
  return json.str();
}

}  // namespace script
