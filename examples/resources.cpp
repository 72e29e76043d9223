// Colours that many objects share, each stored once.

#include <cstdio>

#include "nq/nq.h"

int main() {
  NQColorResourceDB colors;

  // Inserting gives the stored resource that is equal, and counts its holders.
  NQColor color;
  color.rgb(1.0, 0.5, 0.0);
  const NQResource* const fill = colors.insert(color);
  const NQResource* const line = colors.insert(color);
  std::printf("%s, %d holders\n", fill == line ? "one resource" : "two resources",
              int(fill->refCount()));

  // A file has the text of a colour; the colour knows whether to write it again.
  char text[16];
  color.setStringFromRGB(text);
  color.needsSaving(0);
  color.ired(255);  // as it was
  std::printf("%s, %s\n", text, color.needsSaving() != 0 ? "changed" : "unchanged");

  // Whoever inserted, removes: a clone comes back while others hold the colour, the
  // resource itself at last. Either way it is yours.
  delete colors.remove(line);
  std::printf("%d stored\n", int(colors.pResourceList()->length()));
  delete colors.remove(fill);
  std::printf("%d stored\n", int(colors.pResourceList()->length()));

  // Permanent ones stay without a holder, and can be copied to another database.
  const NQResource* const black = colors.pDefaultResource();
  NQColorResourceDB others;
  others.copyPermanent(&colors);
  std::printf("the other database has black at %d\n", int(others.index(black)));
}
