// The airbrush: single pixels sprayed in the current colour over a disc as wide as
// the tool, centred half its width up and to the left of the pointer. Held still, it
// sprays again every 200 ms, each time twice as dense, until the density reaches 1;
// a move starts over at full density.
#pragma once

#include "tools/interaction.h"

inline constexpr UINT_PTR kSprayTimerId = 1;
inline constexpr UINT kSprayIntervalMs = 200;
inline constexpr int kFullAirbrushDensity = 64;

// The number of tries one spray makes (four dots each at most): the disc's area over
// the density. Capped so that a huge diameter cannot stall the editor.
long long SprayTries(int radius, int density);
inline constexpr long long kMaxSprayTries = 1 << 18;

class AirbrushTool : public Interaction {
 public:
  explicit AirbrushTool(CImageEditWnd& editor) : Interaction(editor) {}

  void Press(POINT point) override;
  std::optional<RECT> Move(POINT point) override;
  void Release(POINT point) override;
  int Cursor() const override;
  bool ResumesAfterColorPick() const override { return true; }
  void Interrupt() override { StopSpraying(); }

  // The spray timer fired: the next, denser spray where the pointer was last.
  void SprayAgain();
  // Stops the spray timer if it runs.
  void StopSpraying();
  // A newly chosen airbrush starts at full density.
  void ResetDensity() { density_ = kFullAirbrushDensity; }
  int density() const { return density_; }

  // One spray of single pixels in the current colour around (cx, cy); while the
  // density is above 1 the spray timer is armed to spray again.
  void SprayAirBrush(HDC dc, int cx, int cy, int radius, int density);

 private:
  void SprayAt(POINT pointer, int density);
  RECT SprayArea(POINT pointer) const;

  int density_ = kFullAirbrushDensity;
  UINT_PTR sprayTimerId_ = 0;  // non-zero while the airbrush sprays
};
