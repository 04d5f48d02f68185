// Words written on the report and the summary for the job, profile, background and output options.
#include "control/run_messages.h"

#include <cstdlib>

#include "format/date_time.h"
#include "format/fortran_format.h"
#include "records/data_format.h"
#include "surface/console.h"

namespace corvinet {

namespace {

void Out(Job& job, std::string_view text) {
  WriteLine(job, Unit::Out, text);
}

void WriteJobTypeWords(Job& job, Pattern& p) {
  const bool intensities = job.run.ICRYG != 0;
  if (p.JOBTYP == 0) {
    p.isXray = 1;
    const char* line = intensities ? " => Refinement of X-ray integrated intensity data"
                                   : " => Global Refinement of X-ray powder diffraction data";
    WriteReports(job, line);
    WriteReports(job,
                 p.IXUNIT == AbscissaUnit::kEnergy ? " => Energy Dispersive X-ray data" : line);
  }
  if (std::abs(p.JOBTYP) == 1) {
    WriteReports(job, intensities ? " => Refinement of Neutron integrated intensity data"
                                  : " => Global Refinement of neutron powder data ");
    if (p.JOBTYP < 0) WriteReports(job, " => Neutron Time-Of-Flight data");
  }
  if (p.ICORR != 0) WriteReports(job, " => Intensities corrections in file *.cor");
}

void WriteGeometryWords(Job& job, Pattern& p) {
  if (p.JOBTYP == 2) {
    p.isXray = 1;
    WriteReports(job, " => Pattern calculation, X-ray");
  }
  if (p.isXray == 1) {
    switch (p.ILOR) {
      case 0:
        WriteReports(job, "    Bragg-Brentano or Debye-Scherrer geometry");
        break;
      case 1:
        WriteReports(job, "    Flat plate with PSD");
        break;
      case 2:
        WriteReports(job, "    Transmission Geometry");
        break;
      case 3:
        WriteReports(job, "    Synchrotron B-B/D-S geometry");
        break;
      default:
        break;
    }
  }
  switch (p.IXUNIT) {
    case AbscissaUnit::kTimeOfFlight:
      WriteReports(job, " => Abcisa variable is T.O.F. in microsecs");
      break;
    case AbscissaUnit::kEnergy:
      WriteReports(job, " => Abcisa variable is Energy in Kev");
      break;
    case AbscissaUnit::kQ:
      WriteReports(job, " => Abcisa variable is Q in recipr. Angstr");
      break;
    case AbscissaUnit::kInverseD:
      WriteReports(job, " => Abcisa variable is S in recipr. Angstr");
      break;
    default:
      break;
  }
  if (std::abs(p.JOBTYP) == 3) WriteReports(job, " => Pattern calculation, Neutrons");
  if (std::abs(p.JOBTYP) > 3) StopBox(job, " Invalid JOBTYP ");
}

void WriteBackgroundWord(Job& job, const Pattern& p) {
  if (p.backgroundSign < 0) {
    switch (p.NBCKGD) {
      case 1:
        Out(job, " => Background refined by Debye-like and Polynomial functions");
        return;
      case 2:
        Out(job, " => Background adjusted by Fourier filtering ");
        return;
      case 3:
        Out(job, " => Background adjusted by 12-terms polynomial function ");
        return;
      default:
        Out(job, Fmt("(A,I4,A)", " => Background interpolated by cubic splines between the ",
                     p.NBCKGD, " points given"));
        return;
    }
  }
  if (p.NBCKGD == 0) {
    Out(job, " => Background refined by polynomial function");
  } else if (p.NBCKGD == 1) {
    Out(job, " => Background read from file");
  } else {
    Out(job, Fmt("(A,I4,A)", " => Background linearly interpolated between the ", p.NBCKGD,
                 " points given"));
  }
}

void WritePseudoVoigtWords(Job& job) {
  Out(job, " => Pseudo-Voigt function (ETA variable)");
  Out(job, "                 X-parameter correspond to: ETA=ETA0+X*2theta");
  Out(job, "                       pV(x)= ETA*L(x)+(1-ETA)*G(x)");
}

void WriteProfileWords(Job& job, const Pattern& p) {
  switch (ProfileOf(p)) {
    case ProfileCode::kTripledPseudoVoigt:
      Out(job, " => Tripled pseudo-Voigt function (ETA unique)");
      Out(job, "      p4(x) = X*pV(x-D) + (1-X-Y)*pV(x) + Y*pV(x+D)");
      Out(job, "          D = Shp1*tan(theta)      ");
      Out(job, "      pV(x) = ETA*L(x)+(1-ETA)*G(x)");
      return;
    case ProfileCode::kPseudoVoigt:
      WritePseudoVoigtWords(job);
      return;
    case ProfileCode::kPearsonVII:
      Out(job, " => Normalized Pearson VII (m exponent variable)");
      Out(job, "                 X and Y parameters correspond to:");
      Out(job, "                m=m0+100*X/2theta+10000*Y/2theta**2 ");
      return;
    case ProfileCode::kNumerical:
      Out(job, " => Numerical profile provided by user in file GLOBAL.SHP");
      return;
    case ProfileCode::kTimeOfFlight1:
      Out(job, " => T.O.F Profile Function #1 ");
      Out(job, "    Decay double Exponential convoluted with pseudo-Voigt:");
      Out(job, "    Omega(DT) = (1-eta)N {Exp(u).Erfc(y)+ Exp(v).Erfc(z)} +  ");
      Out(job, "                2N eta/pi{-Im[Exp(p)E1(p)]-Im[Exp(q)E1(q)]}  ");
      return;
    case ProfileCode::kSplitPseudoVoigt:
      Out(job, " => Split pseudo-Voigt function ");
      Out(job, "    For x<=0 eta and FWHM (H) are different than for x>0");
      Out(job, "     x<=0    pV(x)= {ETAl*L(x,Hl)+(1-ETAl)*G(x,Hl)}/(N/4)");
      Out(job, "     x>0     pV(x)= {ETAr*L(x,Hr)+(1-ETAr)*G(x,Hr)}/(N/4)");
      Out(job, "   L(x,H)=1/{1+4*(x/H)^2};  G(x,H)= exp{-4Ln2*(x/H)^2}");
      Out(job, "   N ={Hl*((pi-a)*ETAl+a)+Hr*((pi-a)*ETAr+a)}; a=sqrt(pi/Ln2)");
      return;
    case ProfileCode::kAxialDivergence:
      WritePseudoVoigtWords(job);
      Out(job, "    This function is convoluted with asymmetry due to axial");
      Out(job, "    divergence as formulated by: ");
      Out(job, "    L.W. Finger, D.E. Cox and A.P. Jephcoat,");
      Out(job, "    J. Appl. Cryst. 27, 892-900 (1994)");
      return;
    default:
      return;
  }
}

void WriteInstrumentWord(Job& job, int ip) {
  const char* word = nullptr;
  switch (DataFormatOf(job.patterns[ip].INSTR)) {
    case 0:
      word = " => Data supplied in free format for pattern:";
      break;
    case 1:
      word = " => Data in D1A,D2B (ILL) format for pattern:";
      break;
    case 2:
      word = " => Data in D1B(ILL) format, Step=0.2 in 2theta for pattern:";
      break;
    case 3:
      word = " => Data in D1B,D20 format for pattern:";
      break;
    case 4:
    case -4:
      word = " => Data in BNBL(Synchrotron) format for pattern:";
      break;
    case 5:
      word = " => Data in GENERAL FORMAT for TWO AXIS instrument for pattern:";
      break;
    case 6:
      word = " => Data in D1A,D2B format as prepared by D1A(D2B)SUM for pattern:";
      break;
    case 7:
      word = " => Data in D4,D20L format for pattern:";
      break;
    case 8:
      word = " => Data in DMC format at Wurenlingen for pattern:";
      break;
    case 9:
      word = " => UXD data from Socabim Eva-2 Software for pattern:";
      break;
    case 10:
      word = " => X-Y type of data: 2theta/TOF/E(Kev) Intens sigma for pattern:";
      break;
    case 11:
      word = " => Variable time data collection (format as LHPM) for pattern:";
      break;
    case 12:
      word = " => Data read from GSAS file for pattern:";
      break;
    case kGsasBankFormat:
      word = " => Data read from GSAS file (FXYE, FXY or TIME_MAP banks) for pattern:";
      break;
    case kColumnDataFormat:
      word = " => Data in columns x, y, sigma with comment lines for pattern:";
      break;
    default:
      word = " => Invalid instr parameter for pattern:";
      break;
  }
  WriteReports(job, Fmt("(A,I3)", word, ip));
  const int bank = DataBankOf(job.patterns[ip].INSTR);
  if (bank > 0)
    WriteReports(job, Fmt("(A,I4)", " => Bank (or spectrum) chosen in the file: ", bank));
}

void WritePatternOutputWords(Job& job, const Pattern& p) {
  if (p.IOT != 0) WriteReports(job, " => Output Obs and Calc intensities on last cycle");
  if (p.IPL == 1) WriteReports(job, " => Generate line printer plot");
  if (p.IPL == 2) WriteReports(job, " => Generate bacground file *.bac");
  if (p.IPL == 3) WriteReports(job, " => Difference curve in file *.bac ");
  if (p.IPL2 != 0) WriteReports(job, " => Generate file *.PRF for plot");
  if (p.IPC != 0) WriteReports(job, " => Output Integrated Intensities");
  if (p.LST1 != 0) WriteReports(job, " => Print reflection list");
}

void WritePatternListWords(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  WriteInstrumentWord(job, ip);
  if (job.run.NPHASE == 1) p.LST3 = 0;
  if (p.LST3 != 0) WriteReports(job, " => Print merged reflection list");
  if (p.LST2 == 1) WriteReports(job, " => Print corrected data");
  if (p.LST2 == 2) WriteReports(job, " => Pot pattern at each cycle");
  if (p.IANALY == 1) WriteReports(job, " => Analysis of refinement at the end");
}

void WriteRpaLine(Job& job, std::string_view tag, std::string_view format,
                  std::initializer_list<int> values) {
  std::vector<FormatValue> list(values.begin(), values.end());
  WriteLine(job, Unit::Rpa, std::string(tag) + FormatText(format, list));
}

}  // namespace

void WritePatternConditions(Job& job, int ip) {
  Pattern& p = job.patterns[ip];
  const RunOptions& r = job.run;
  WriteReports(job, Fmt("(A,I3)", " ==> CONDITIONS OF THIS RUN FOR PATTERN No.:", ip));
  WriteJobTypeWords(job, p);
  if (r.ICRYG != 0) return;
  WriteGeometryWords(job, p);
  Out(job, " => Title:" + r.Title);
  Out(job, Fmt("(A,I3)", " => Number of phases: ", r.NPHASE));
  Out(job, Fmt("(A,I3)", " => Number of excluded regions: ", p.NEXCRG));
  Out(job, Fmt("(A,I3)", " => Number of scattering factors supplied: ", p.scatteringCount));
  if (p.NORI == 1) Out(job, " => March model for preferred orientation");
  if (p.NORI == 2) Out(job, " => Pecharskii model for preferred orientation");
  if (p.IWGT == 1) Out(job, " => Maximum Likelihood weighting scheme");
  if (p.IWGT == 2) Out(job, " => Unit weights will be applied");
  if (p.IASYM == 0) Out(job, " => Asymmetry correction as in J.Appl.Cryst. 26,128(1993)");
  if (p.IASYM == 1) Out(job, " => Asymmetry correction as in J.Appl.Cryst. 15,615(1982)");
  WriteBackgroundWord(job, p);
  Out(job, "");
  WriteProfileWords(job, p);
}

void WriteOutputOptions(Job& job) {
  const RunOptions& r = job.run;
  if (r.ICRYG == 0) {
    for (int ip = 1; ip <= r.NPATT; ++ip) WritePatternOutputWords(job, job.patterns[ip]);
  }
  if (r.MAT != 0 && r.MAXS > 1) WriteReports(job, " => Output Correlation Matrix");
  if (r.NXT != 0) WriteReports(job, " => Generate new input file *.PCR");
  if (r.ICRYG == 0) {
    for (int ip = 1; ip <= r.NPATT; ++ip) WritePatternListWords(job, ip);
  }
}

void WriteRpaHead(Job& job) {
  const RunOptions& r = job.run;
  const int n = r.NPATT;
  auto& P = job.patterns;
  std::string dataFiles;
  for (int ip = 1; ip <= n; ++ip) dataFiles += (ip > 1 ? " " : "") + P[ip].DatCode;
  WriteLine(job, Unit::Rpa, "TITL " + r.Title);
  WriteLine(job, Unit::Rpa, "FILES => PCR-file : " + job.driver.PcrCode);
  WriteLine(job, Unit::Rpa, "FILES => DAT-files: " + dataFiles);
  WriteLine(job, Unit::Rpa, "DATE & TIME " + DateTime().DateLine);
  WriteLine(job, Unit::Rpa, "REM      NPHASE      IDUM      IASG      NRELL   ICRYG");
  WriteRpaLine(job, "GLB1 ", "(5(I5,3X))", {r.NPHASE, r.IDUM, r.IASG, r.NRELL, r.ICRYG});
  WriteLine(job, Unit::Rpa, "REM    JOBTYP    NPROF     NBCKGD     NEXCRG     NSCAT     NORI     ");
  for (int ip = 1; ip <= n; ++ip) {
    WriteRpaLine(job, "GLB1 ", "(6(I5,3X))",
                 {P[ip].JOBTYP, P[ip].NPROF, P[ip].NBCKGD, P[ip].NEXCRG, P[ip].NSCAT, P[ip].NORI});
  }
  WriteLine(job, Unit::Rpa,
            "REM    IWGT     ILOR     IRESO     ISTEP     IXUNIT     ICORR     IASYM     ");
  for (int ip = 1; ip <= n; ++ip) {
    WriteRpaLine(job, "GLB2 ", "(7(I5,3X))",
                 {P[ip].IWGT, P[ip].ILOR, P[ip].IRESO, P[ip].ISTEP, ControlNumber(P[ip].IXUNIT),
                  P[ip].ICORR, P[ip].IASYM});
  }
  if (r.singlePatternForm) {
    WriteLine(job, Unit::Rpa, "REM   IOT   IPL   IPC   MAT   NXT  lst1  lst2  lst3  IPL1  IPL2");
    WriteRpaLine(job, "OUT1 ", "(10(I4,2X))",
                 {P[1].IOT, P[1].IPL, P[1].IPC, r.MAT, r.NXT, P[1].LST1, P[1].LST2, P[1].LST3,
                  r.IPL1, P[1].IPL2});
    WriteLine(job, Unit::Rpa, "REM   instr  JCIL  JSY  jlkh  jfou ISHOR ianaly");
    WriteRpaLine(job, "OUT2 ", "(7(I4,2X))",
                 {P[1].INSTR, r.JCIL, r.JSY, P[1].JLKH, P[1].JFOU, r.ISHOR, P[1].IANALY});
    return;
  }
  WriteLine(job, Unit::Rpa, "REM      MAT    NXT    IPL1     JCIL     JSY     ISHOR");
  WriteRpaLine(job, "OUT1 ", "(6(I4,2X))", {r.MAT, r.NXT, r.IPL1, r.JCIL, r.JSY, r.ISHOR});
  WriteLine(job, Unit::Rpa, "REM      IOT    IPL     IPC     LST1     LST2     LST3     ");
  for (int ip = 1; ip <= n; ++ip) {
    WriteRpaLine(job, "OUT2 ", "(6(I4,2X))",
                 {P[ip].IOT, P[ip].IPL, P[ip].IPC, P[ip].LST1, P[ip].LST2, P[ip].LST3});
  }
  WriteLine(job, Unit::Rpa, "REM      IPL2     INSTR     JLKH     JFOU     IANALY      ");
  for (int ip = 1; ip <= n; ++ip) {
    WriteRpaLine(job, "OUT3 ", "(5(I4,2X))",
                 {P[ip].IPL2, P[ip].INSTR, P[ip].JLKH, P[ip].JFOU, P[ip].IANALY});
  }
}

}  // namespace corvinet
