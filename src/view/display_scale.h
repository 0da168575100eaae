// How a display percentage becomes a display scale.
#pragma once

// Percentages below 100 map onto 0.25 .. 0.9925 so that even 0 % leaves a visible
// picture; 100 to 200 map linearly onto 1.0 .. 2.0. A shrunk picture that is larger
// than the reference surface is shrunk a little further, in proportion to how much
// larger it is, and never to a scale of 0 or below.
double ScaleFromPercentage(int percent, int originalWidth, int originalHeight, int referenceWidth,
                           int referenceHeight);
