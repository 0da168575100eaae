// The editor's tools: one interaction for each tool mode that paints or selects, made
// once and kept for the editor's life. A tool is registered here once, under the
// tool mode its setter chooses (and, for a shape style with a drag of its own, that
// style); the editor's mouse handlers then find it through For.
#pragma once

#include <compare>
#include <map>
#include <memory>
#include <utility>

#include "tools/airbrush_tool.h"
#include "tools/curve_tool.h"
#include "tools/interaction.h"
#include "tools/tool_state.h"

class ToolBox {
 public:
  explicit ToolBox(CImageEditWnd& editor);
  ToolBox(const ToolBox&) = delete;
  ToolBox& operator=(const ToolBox&) = delete;

  // The tool of that mode: the one registered for the shape style too, else the
  // mode's own; null for no tool, whose drags are the editor's own.
  Interaction* For(ToolMode mode, ShapeStyle style) const;

  // The airbrush keeps spraying on its timer whichever tool is chosen meanwhile, and
  // the host reads the airbrush's density and the curve's stage.
  AirbrushTool& airbrush() const { return *airbrush_; }
  const CurveTool& curve() const { return *curve_; }

 private:
  // A tool mode, and the shape style for a tool of one style only.
  struct Key {
    ToolMode mode;
    ShapeStyle style = ShapeStyle::None;
    auto operator<=>(const Key&) const = default;
  };

  template <typename Tool, typename... Args>
  Tool& Register(Key key, Args&&... args) {
    auto tool = std::make_unique<Tool>(std::forward<Args>(args)...);
    Tool& registered = *tool;
    tools_[key] = std::move(tool);
    return registered;
  }

  std::map<Key, std::unique_ptr<Interaction>> tools_;
  AirbrushTool* airbrush_ = nullptr;
  CurveTool* curve_ = nullptr;
};
