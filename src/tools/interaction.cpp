#include "tools/interaction.h"

#include "editor/image_edit_wnd.h"

HDC Interaction::Layer() const { return editor_.m_surfaces.drawingLayer.dc(); }

StrokeState& Interaction::Stroke() const { return editor_.m_stroke; }

int Interaction::Width() const { return editor_.m_tools.toolWidth; }
