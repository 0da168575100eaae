#include "control/state_json.h"

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <utility>

#include "control/json_writer.h"
#include "tools/color_string.h"

namespace {

void Ints(JsonWriter& json, std::initializer_list<int> values) {
  json.BeginArray();
  for (int value : values) json.Value(value);
  json.EndArray();
}

void Settings(JsonWriter& json, const AdjustmentSettings& s) {
  json.BeginObject();
  json.Key("brightness").Value(s.brightness).Key("contrast").Value(s.contrast);
  json.Key("hue").Value(s.hue).Key("saturation").Value(s.saturation);
  json.Key("gammaR").Value(s.redGamma).Key("gammaG").Value(s.greenGamma).Key("gammaB").Value(s.blueGamma);
  json.Key("gray").Value(s.gray).Key("invert").Value(s.invert);
  json.Key("sharpen").Value(s.sharpenSteps).Key("smooth").Value(s.smoothSteps);
  json.Key("whiten").Value(s.whitenSteps).Key("blend").Value(s.blend);
  json.EndObject();
}

using Member = std::pair<const char*, std::function<void(JsonWriter&, const EditorState&)>>;

// The report's members in the order they are printed.
const std::vector<Member>& Members() {
  static const std::vector<Member> members = {
      {"toolMode", [](JsonWriter& j, const EditorState& s) { j.Value(s.toolMode); }},
      {"savedToolMode", [](JsonWriter& j, const EditorState& s) { j.Value(s.savedToolMode); }},
      {"color", [](JsonWriter& j, const EditorState& s) { j.Value(ColorString(s.color)); }},
      {"penSize", [](JsonWriter& j, const EditorState& s) { j.Value(s.penSize); }},
      {"toolWidth", [](JsonWriter& j, const EditorState& s) { j.Value(s.toolWidth); }},
      {"shapeStyle", [](JsonWriter& j, const EditorState& s) { j.Value(s.shapeStyle); }},
      {"curveStage", [](JsonWriter& j, const EditorState& s) { j.Value(s.curveStage); }},
      {"airbrushDensity", [](JsonWriter& j, const EditorState& s) { j.Value(s.airbrushDensity); }},
      {"scale", [](JsonWriter& j, const EditorState& s) { j.Value(s.scale); }},
      {"imageRect",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.imageRect.left, s.imageRect.top, s.imageRect.right, s.imageRect.bottom});
       }},
      {"displayed",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.displayed.cx, s.displayed.cy});
       }},
      {"original",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.original.cx, s.original.cy});
       }},
      {"scroll",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.scroll.x, s.scroll.y});
       }},
      {"bars",
       [](JsonWriter& j, const EditorState& s) {
         j.BeginArray().Value(s.hScrollShown).Value(s.vScrollShown).EndArray();
       }},
      {"view",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.view.cx, s.view.cy});
       }},
      {"history",
       [](JsonWriter& j, const EditorState& s) {
         j.BeginObject().Key("count").Value(s.historyCount).Key("index").Value(s.historyIndex).EndObject();
       }},
      {"objects",
       [](JsonWriter& j, const EditorState& s) {
         j.BeginArray();
         for (const ObjectState& o : s.objects) {
           j.BeginObject().Key("slot").Value(o.slot).Key("kind").Value(o.kind);
           j.Key("x").Value(o.x).Key("y").Value(o.y).Key("w").Value(o.width).Key("h").Value(o.height);
           j.Key("selected").Value(o.selected).EndObject();
         }
         j.EndArray();
       }},
      {"zorder",
       [](JsonWriter& j, const EditorState& s) {
         j.BeginArray();
         for (int slot : s.zOrder) j.Value(slot);
         j.EndArray();
       }},
      {"selectedObject", [](JsonWriter& j, const EditorState& s) { j.Value(s.selectedObject); }},
      {"selectionBox",
       [](JsonWriter& j, const EditorState& s) {
         Ints(j, {s.selectionBox.left, s.selectionBox.top, s.selectionBox.right, s.selectionBox.bottom});
       }},
      {"frame", [](JsonWriter& j, const EditorState& s) { j.Value(s.frame); }},
      {"transparency",
       [](JsonWriter& j, const EditorState& s) {
         j.BeginObject().Key("color").Value(ColorString(s.transparentColor));
         j.Key("percent").Value(s.transparency).EndObject();
       }},
      {"texture", [](JsonWriter& j, const EditorState& s) { j.Value(s.texture); }},
      {"textShown", [](JsonWriter& j, const EditorState& s) { j.Value(s.textShown); }},
      {"settings", [](JsonWriter& j, const EditorState& s) { Settings(j, s.settings); }},
      {"scalingAllowed", [](JsonWriter& j, const EditorState& s) { j.Value(s.scalingAllowed); }},
      {"verbose", [](JsonWriter& j, const EditorState& s) { j.Value(s.verbose); }},
      {"gdiObjects", [](JsonWriter& j, const EditorState& s) { j.Value(s.gdiObjects); }},
  };
  return members;
}

}  // namespace

bool IsStateKey(std::string_view key) {
  return std::any_of(Members().begin(), Members().end(), [&](const Member& m) { return key == m.first; });
}

std::string EditorStateJson(const EditorState& state, const std::vector<std::string>& keys) {
  JsonWriter json;
  json.BeginObject();
  for (const auto& [name, write] : Members()) {
    if (!keys.empty() && std::find(keys.begin(), keys.end(), name) == keys.end()) continue;
    json.Key(name);
    write(json, state);
  }
  json.EndObject();
  return json.str();
}
