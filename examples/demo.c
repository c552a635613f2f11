/* A short tour of vrks: aligned buffers, fills, copies, reversal and byte
 * order, as an audio or radio program would use them. */
#include <stdio.h>

#include <vrks.h>

static void show16(const char* what, const Vrk16u* v, int n) {
  int i;
  printf("  %-28s", what);
  for (i = 0; i < n; ++i) printf(" %04x", v[i]);
  printf("\n");
}

int main(void) {
  const VrkLibraryVersion* v = vrksGetLibVersion();
  const int n = 8;
  Vrk32fc carrier = {0.5f, -0.25f};
  Vrk32fc* iq = vrksMalloc_32fc(n);
  Vrk32fc* rev = vrksMalloc_32fc(n);
  Vrk16u* pcm = vrksMalloc_16u(n);
  Vrk8u bits[2] = {0x00, 0x00};
  const Vrk8u pattern[1] = {0xF0};
  int i;

  printf("vrks %s (%s, %s)\n", v->versionText, v->libraryName, v->targetTag);
  if (iq == NULL || rev == NULL || pcm == NULL) return 1;

  /* A block of a constant complex carrier, one sample nudged, then reversed. */
  vrksSet_32fc(carrier, iq, n);
  iq[0].re = 1.0f;
  vrksFlip_32fc(iq, rev, n);
  printf("  reversed I/Q block, last sample (%g, %g), first (%g, %g)\n",
         rev[n - 1].re, rev[n - 1].im, rev[0].re, rev[0].im);

  /* Little-endian PCM words to big-endian for a network stream. */
  for (i = 0; i < n; ++i) pcm[i] = (Vrk16u)(0x0100 * i + 0x12);
  show16("PCM words:", pcm, n);
  vrksSwapBytes_16u_I(pcm, n);
  show16("byte-swapped:", pcm, n);

  /* Four bits of a header field placed at bit 6 of a frame. */
  vrksCopy_1u(pattern, 0, bits, 6, 4);
  printf("  bit field at offset 6:         %02x %02x\n", bits[0], bits[1]);

  /* Mixing two 16-bit PCM signals: the sum halved with rounding to nearest
   * even (scale 1), then a gain of 3/2 (x 3, scale 1) that saturates instead
   * of wrapping. */
  {
    const Vrk16s voice[6] = {1000, -2000, 30000, -30000, 5, 7};
    const Vrk16s music[6] = {3000, 1000, 20000, -20000, 0, 0};
    Vrk16s mix[6];
    vrksAdd_16s_Sfs(voice, music, mix, 6, 1);
    printf("  mixed 16-bit samples:         ");
    for (i = 0; i < 6; ++i) printf(" %6d", mix[i]);
    printf("\n");
    vrksMulC_16s_ISfs(3, mix, 6, 1);
    printf("  with a gain of 1.5:           ");
    for (i = 0; i < 6; ++i) printf(" %6d", mix[i]);
    printf("\n");
  }

  /* 16-bit PCM to float, a gain of 0.7 in float, and back to 16 bits with
   * rounding to nearest even and saturation. */
  {
    const Vrk16s pcm16[5] = {100, -101, 32767, -32768, 5};
    Vrk32f f[5];
    Vrk16s back[5];
    vrksConvert_16s32f(pcm16, f, 5);
    vrksMulC_32f_I(0.7f, f, 5);
    vrksConvert_32f16s_Sfs(f, back, 5, vrkRoundToNearestEven, 0);
    printf("  PCM x 0.7 through float:      ");
    for (i = 0; i < 5; ++i) printf(" %6d", back[i]);
    printf("\n");
  }

  /* Errors are statuses; nothing is written. */
  printf("  copy with a null source:       status %d\n", vrksCopy_32fc(NULL, rev, n));
  printf("  copy of length 0:              status %d\n", vrksCopy_32fc(iq, rev, 0));

  vrksFree(iq);
  vrksFree(rev);
  vrksFree(pcm);
  return 0;
}
