#include "state_json.h"

#include <initializer_list>

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

}  // namespace

std::string EditorStateJson(const EditorState& state) {
  JsonWriter json;
  json.BeginObject();
  json.Key("toolMode").Value(state.toolMode);
  json.Key("savedToolMode").Value(state.savedToolMode);
  json.Key("color").Value(FormatRgbHex(state.color));
  json.Key("penSize").Value(state.penSize);
  json.Key("toolWidth").Value(state.toolWidth);
  json.Key("shapeStyle").Value(state.shapeStyle);
  json.Key("curveStage").Value(state.curveStage);
  json.Key("scale").Value(state.scale);
  const RECT& image = state.imageRect;
  IntArray(json, "imageRect", {image.left, image.top, image.right, image.bottom});
  IntArray(json, "displayed", {state.displayed.cx, state.displayed.cy});
  IntArray(json, "original", {state.original.cx, state.original.cy});
  IntArray(json, "scroll", {state.scroll.x, state.scroll.y});
  BoolArray(json, "bars", {state.hScrollShown, state.vScrollShown});
  IntArray(json, "view", {state.view.cx, state.view.cy});
  json.Key("history").BeginObject();
  json.Key("count").Value(state.historyCount);
  json.Key("index").Value(state.historyIndex);
  json.EndObject();
  // Inserted objects carry no readable geometry yet; the list stays empty until they do.
  json.Key("objects").BeginArray().EndArray();
  json.Key("zorder").BeginArray();
  for (int slot : state.zOrder) json.Value(slot);
  json.EndArray();
  json.Key("selectedObject").Value(state.selectedObject);
  const RECT& box = state.selectionBox;
  IntArray(json, "selectionBox", {box.left, box.top, box.right, box.bottom});
  json.Key("frame").Value(state.frame);
  json.Key("textShown").Value(state.textShown);
  Settings(json, state.settings);
  json.Key("scalingAllowed").Value(state.scalingAllowed);
  json.Key("verbose").Value(state.verbose);
  json.Key("gdiObjects").Value(state.gdiObjects);
  json.EndObject();
  return json.str();
}

}  // namespace script
