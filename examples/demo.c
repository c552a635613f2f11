/* A short tour of vrks: aligned buffers, fills, copies, reversal and byte
 * order, as an audio or radio program would use them. */
#include <math.h>
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

  /* The spectrum of two tones: 1 kHz and 3.5 kHz at 16 kHz sampling, 256
   * samples, through a real FFT with the spectrum in CCS layout (bins
   * 0..128 as complex pairs) and 1/N scaling, so that a tone of amplitude a
   * shows a magnitude of a/2 in its bin. */
  {
    enum { order = 8, N = 1 << order };
    const double pi = 3.14159265358979323846;
    VrksFFTState_R_32f* fft = NULL;
    Vrk32f* x = vrksMalloc_32f(N);
    Vrk32fc* spectrum = vrksMalloc_32fc(N / 2 + 1);
    int bin, size = 0, best[2] = {0, 0};
    Vrk8u* work = NULL;
    if (x == NULL || spectrum == NULL) return 1;
    for (i = 0; i < N; ++i)
      x[i] = (Vrk32f)(1.0 * sin(2 * pi * 1000.0 * i / 16000.0) + 0.5 * sin(2 * pi * 3500.0 * i / 16000.0));
    if (vrksFFTInitAlloc_R_32f(&fft, order, vrkFFTScaleFwdByN, 0) != vrkStatusOk) return 1;
    vrksFFTGetBufSize_R_32f(fft, &size);
    if (size > 0) work = vrksMalloc_8u(size);
    vrksFFTFwd_RToCCS_32f(x, (Vrk32f*)spectrum, fft, work);
    for (bin = 1; bin <= N / 2; ++bin) {
      const double m = hypot(spectrum[bin].re, spectrum[bin].im);
      if (m > hypot(spectrum[best[0]].re, spectrum[best[0]].im)) best[1] = best[0], best[0] = bin;
      else if (m > hypot(spectrum[best[1]].re, spectrum[best[1]].im)) best[1] = bin;
    }
    printf("  two tones, 256-point real FFT: peaks\n");
    for (i = 0; i < 2; ++i)
      printf("    bin %3d = %6.0f Hz, magnitude %.3f\n", best[i], best[i] * 16000.0 / N,
             hypot(spectrum[best[i]].re, spectrum[best[i]].im));
    printf("  magnitudes of bins 14..18 and 54..58:");
    for (bin = 14; bin <= 18; ++bin) printf(" %.3f", hypot(spectrum[bin].re, spectrum[bin].im));
    printf(" |");
    for (bin = 54; bin <= 58; ++bin) printf(" %.3f", hypot(spectrum[bin].re, spectrum[bin].im));
    printf("\n");
    vrksFree(work);
    vrksFFTFree_R_32f(fft);
    vrksFree(spectrum);
    vrksFree(x);
  }

  /* Errors are statuses; nothing is written. */
  printf("  copy with a null source:       status %d\n", vrksCopy_32fc(NULL, rev, n));
  printf("  copy of length 0:              status %d\n", vrksCopy_32fc(iq, rev, 0));

  vrksFree(iq);
  vrksFree(rev);
  vrksFree(pcm);
  return 0;
}
