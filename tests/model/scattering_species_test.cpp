// Tests of the species tables of phases: X-ray, neutron and magnetic labels, object labels, the
// count limit, the running count across phases, the anomalous column and the lookup by label.
#include "model/scattering_species.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "surface/console.h"
#include "test_support.h"

namespace corvinet {
namespace {

using testing::CapturedJob;
using testing::ScratchDir;

// One pattern of the given job type, phases filled by hand, reports open.
struct SpeciesJob {
  ScratchDir dir;
  CapturedJob job;
  int atoms = 0;

  SpeciesJob(int jobtyp, int jbt, float lambda = 1.5406f) {
    testing::OpenControlText(dir, *job, "");
    job->run.NPATT = 1;
    job->run.NPHASE = 1;
    job->patterns[1].JOBTYP = jobtyp;
    job->patterns[1].LAMBDA[1] = lambda;
    AddPhase(1, jbt);
  }
  void AddPhase(int k, int jbt) {
    job->run.NPHASE = std::max(job->run.NPHASE, k);
    job->phases[k].Jbt = jbt;
    job->phases[k].pat[1].Contribution = 1;
    job->phases[k].atomOffset = atoms;
  }
  // Adds an atom to phase k (the phases are filled in order).
  AtomSite& AddAtom(int k, const std::string& typ, int nt = 0) {
    ++atoms;
    ++job->phases[k].Nat;
    AtomSite& a = job->atoms[atoms];
    a.label = typ;
    a.species = typ;
    a.N_t = nt;
    return a;
  }
  // Adds a scattering entry of the pattern: a name and its f' or scattering length.
  void AddEntry(const std::string& name, float fprime) {
    Pattern& p = job->patterns[1];
    p.NSCAT = ++p.scatteringCount;
    p.scattering[p.scatteringCount].NAM = name;
    p.scattering[p.scatteringCount].Fprime = fprime;
  }
  // Sets up the species of phase k in every pattern, as the reader does pattern by pattern.
  bool SetUp(int k = 1) {
    return testing::RunsWithoutStop(*job, [k](Job& j) {
      for (int ip = 1; ip <= j.run.NPATT; ++ip) SetUpPhaseSpecies(j, k, ip);
    });
  }
  const PhasePattern& Table(int k = 1) { return job->phases[k].pat[1]; }
  std::string Out() { return testing::FlushedReport(dir, *job); }
  bool OutHas(const std::string& line) { return testing::HasLine(Out(), line); }
  bool ConsoleHas(const std::string& text) { return job.Console().find(text) != std::string::npos; }
};

constexpr int kXray = 0;
constexpr int kNeutron = 1;

// ---- X-rays ----

TEST(ScatteringSpecies, XrayLabelIsFoldedToLowerCaseAndFound) {
  SpeciesJob s(kXray, 0);
  AtomSite& fe = s.AddAtom(1, "Fe+3");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(fe.nuclearSpecies, 1);
  const ChemicalSpecies& sp = s.Table().species[1];
  EXPECT_EQ(sp.label, "fe+3");
  EXPECT_EQ(sp.kind, SpeciesKind::ByLabel);
  // fe+3 of the X-ray table: 11.1764 4.6147 7.3863 0.3005 3.3948 11.6729 0.0724 38.5566 0.9707.
  EXPECT_FLOAT_EQ(sp.coeff[1], 11.1764f);
  EXPECT_FLOAT_EQ(sp.coeff[4], 0.3005f);
  EXPECT_FLOAT_EQ(sp.coeff[9], 0.9707f);
  // Fe (Z 26) is row 25 of the anomalous table; Cu K-alpha is column 3.
  EXPECT_FLOAT_EQ(sp.fp, -1.179f);
  EXPECT_FLOAT_EQ(sp.fpp, 3.197f);
  EXPECT_EQ(s.Table().speciesCount, 1);
}

TEST(ScatteringSpecies, XrayBlockHasItsHeadersAndOneLinePerNewSpecies) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "Fe+3");
  s.AddAtom(1, "o");
  ASSERT_TRUE(s.SetUp());
  EXPECT_TRUE(s.OutHas(" => Scattering coefficients from internal table"));
  EXPECT_TRUE(s.OutHas(" => X-ray scattering coeff. (A1,B1,A2,...C,Dfp,Dfpp)"));
  EXPECT_TRUE(s.OutHas(
      " FE+3  11.17640   4.61470   7.38630   0.30050   3.39480  11.67290   0.07240  38.55660   "
      "0.97070  -1.1790   3.1970"));
  // O is row 7: f' 0.047 and f'' 0.032 at Cu K-alpha.
  const std::string out = s.Out();
  EXPECT_NE(out.find(" O      3.04850  13.27710"), std::string::npos);
}

TEST(ScatteringSpecies, TwoAtomsWithOneLabelShareOneSpecies) {
  SpeciesJob s(kXray, 0);
  AtomSite& a = s.AddAtom(1, "Si");
  AtomSite& b = s.AddAtom(1, "O");
  AtomSite& c = s.AddAtom(1, "SI");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(a.nuclearSpecies, 1);
  EXPECT_EQ(b.nuclearSpecies, 2);
  EXPECT_EQ(c.nuclearSpecies, 1);
  EXPECT_EQ(s.Table().speciesCount, 2);
}

TEST(ScatteringSpecies, SiAndValenceSiGiveDifferentRows) {
  SpeciesJob s(kXray, 0);
  AtomSite& si = s.AddAtom(1, "si");
  AtomSite& siv = s.AddAtom(1, "siv");
  AtomSite& cval = s.AddAtom(1, "cval");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(si.nuclearSpecies, 1);
  EXPECT_EQ(siv.nuclearSpecies, 2);
  EXPECT_FLOAT_EQ(s.Table().species[1].coeff[1], 6.2915f);
  EXPECT_FLOAT_EQ(s.Table().species[2].coeff[1], 5.66269f);
  EXPECT_EQ(cval.nuclearSpecies, 3);
  EXPECT_FLOAT_EQ(s.Table().species[3].coeff[1], 2.26069f);
  // Both silicon rows take the anomalous terms of Si (row 13).
  EXPECT_FLOAT_EQ(s.Table().species[2].fp, 0.244f);
  EXPECT_FLOAT_EQ(s.Table().species[2].fpp, 0.330f);
}

TEST(ScatteringSpecies, XrayLabelNotFoundStops) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "Xx");
  EXPECT_FALSE(s.SetUp());
  EXPECT_TRUE(s.OutHas(" => Scattering coefficients NOT FOUND for xx  "));
  EXPECT_TRUE(s.ConsoleHas(" => Scattering coefficients NOT FOUND for xx"));
  EXPECT_TRUE(s.ConsoleHas(" Some scattering coefficients NOT FOUND"));
}

TEST(ScatteringSpecies, SeventeenthSpeciesStopsTheRun) {
  SpeciesJob s(kXray, 0);
  const char* labels[] = {"h",  "he", "li", "be", "b",  "c", "n", "o", "f",
                          "ne", "na", "mg", "al", "si", "s", "p", "cl"};
  for (const char* l : labels) s.AddAtom(1, l);
  EXPECT_FALSE(s.SetUp());
  EXPECT_TRUE(s.OutHas(" => Maximum number of chemical species:  16"));
  EXPECT_TRUE(s.ConsoleHas(" Too many chemical species"));
  EXPECT_EQ(s.job->atoms[16].nuclearSpecies, 16);
}

TEST(ScatteringSpecies, SixteenSpeciesPass) {
  SpeciesJob s(kXray, 0);
  const char* labels[] = {"h", "he", "li", "be", "b",  "c",  "n", "o",
                          "f", "ne", "na", "mg", "al", "si", "s", "p"};
  for (const char* l : labels) s.AddAtom(1, l);
  EXPECT_TRUE(s.SetUp());
  EXPECT_EQ(s.Table().speciesCount, 16);
}

// ---- Objects ----

TEST(ScatteringSpecies, ObjectLabelGivesANegativeSpeciesNumber) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "O");
  AtomSite& obj = s.AddAtom(1, "SPHE");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(obj.nuclearSpecies, -2);
  EXPECT_EQ(s.Table().objectCount, 1);
  EXPECT_EQ(s.Table().species[2].label, "SPHE");
  EXPECT_TRUE(s.OutHas(" SPHE  Form-factor of an user-supplied object"));
}

TEST(ScatteringSpecies, AllTenObjectLabelsAreKnown) {
  SpeciesJob s(kNeutron, 0);
  for (std::string_view l : kObjectLabels) s.AddAtom(1, std::string(l));
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(s.Table().objectCount, 10);
  EXPECT_EQ(s.job->atoms[10].nuclearSpecies, -10);
  EXPECT_EQ(s.Table().species[8].label, "FUD2");
}

TEST(ScatteringSpecies, XrayObjectLabelMustBeTypedExactly) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "sphe");
  EXPECT_FALSE(s.SetUp());
  EXPECT_TRUE(s.ConsoleHas(" => Scattering coefficients NOT FOUND for sphe"));
  EXPECT_TRUE(s.ConsoleHas(" Some scattering coefficients NOT FOUND"));
}

TEST(ScatteringSpecies, LabelInTheTablesIsFoundBeforeObjectLabels) {
  // A scattering entry named like an object is a species of the table: the
  // atom takes it, with a positive number, and no object is made.
  SpeciesJob s(kNeutron, 0);
  s.AddEntry("SPHE", 0.5f);
  AtomSite& a = s.AddAtom(1, "SPHE");
  AtomSite& h = s.AddAtom(1, "H");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(a.nuclearSpecies, 1);
  EXPECT_EQ(s.Table().objectCount, 0);
  EXPECT_FLOAT_EQ(s.Table().species[1].fp, 0.5f);
  // An element label is found in the neutron table, not taken for an object.
  EXPECT_EQ(h.nuclearSpecies, 2);
  EXPECT_FLOAT_EQ(s.Table().species[2].fp, -0.3739f);
}

// ---- Neutrons ----

TEST(ScatteringSpecies, NeutronLabelIsNotFolded) {
  SpeciesJob upper(kNeutron, 0);
  AtomSite& fe = upper.AddAtom(1, "FE");
  ASSERT_TRUE(upper.SetUp());
  EXPECT_EQ(fe.nuclearSpecies, 1);
  EXPECT_FLOAT_EQ(upper.Table().species[1].fp, 0.945f);
  EXPECT_TRUE(upper.OutHas(" => Scattering lengths:"));
  EXPECT_TRUE(upper.OutHas(" FE      0.9450"));

  SpeciesJob mixed(kNeutron, 0);
  mixed.AddAtom(1, "Fe+3");
  EXPECT_FALSE(mixed.SetUp());
  EXPECT_TRUE(mixed.OutHas(" => scattering length NOT FOUND for Fe+3"));
  EXPECT_TRUE(mixed.ConsoleHas(" => scattering length NOT FOUND for Fe+3"));
  EXPECT_TRUE(mixed.ConsoleHas(" Some scattering length NOT FOUND"));
}

TEST(ScatteringSpecies, NeutronRowsBehindDeuteriumAreReachedByNoLabel) {
  for (const char* label : {"SM", "PM", "RA", "PA", "AM", "CM"}) {
    SpeciesJob s(kNeutron, 0);
    s.AddAtom(1, label);
    EXPECT_FALSE(s.SetUp()) << label;
    EXPECT_TRUE(s.ConsoleHas(" Some scattering length NOT FOUND")) << label;
  }
  SpeciesJob d(kNeutron, 0);
  AtomSite& a = d.AddAtom(1, "D");
  ASSERT_TRUE(d.SetUp());
  EXPECT_EQ(a.nuclearSpecies, 1);
  EXPECT_FLOAT_EQ(d.Table().species[1].fp, 0.6671f);
}

TEST(ScatteringSpecies, NeutronRetryWithTheSecondCharacter) {
  // "XV" is no key; its second character V is.
  SpeciesJob s(kNeutron, 0);
  AtomSite& a = s.AddAtom(1, "XV");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(a.nuclearSpecies, 1);
  EXPECT_EQ(s.Table().species[1].label, "V   ");
  EXPECT_FLOAT_EQ(s.Table().species[1].fp, -0.0382f);
}

TEST(ScatteringSpecies, LengthGivenByAnEntryReachesALabelTheTableCannot) {
  SpeciesJob s(kNeutron, 0);
  s.AddEntry("SM", 0.08f);
  AtomSite& sm = s.AddAtom(1, "SM");
  AtomSite& o = s.AddAtom(1, "O");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(sm.nuclearSpecies, 1);
  EXPECT_FLOAT_EQ(s.Table().species[1].fp, 0.08f);
  EXPECT_EQ(o.nuclearSpecies, 2);  // new species follow the given ones
  EXPECT_EQ(s.Table().speciesCount, 2);
}

// ---- Magnetic form factors ----

TEST(ScatteringSpecies, MagneticLabelGivesItsNucleusInANuclearAndMagneticPhase) {
  SpeciesJob s(kNeutron, 10);
  AtomSite& fe = s.AddAtom(1, "MFE3", 1);
  AtomSite& o = s.AddAtom(1, "O", 0);
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(fe.nuclearSpecies, 1);
  EXPECT_EQ(s.Table().species[1].label, "FE  ");
  EXPECT_FLOAT_EQ(s.Table().species[1].fp, 0.945f);
  EXPECT_EQ(o.nuclearSpecies, 2);
  EXPECT_EQ(o.magneticSpecies, 0);
  EXPECT_EQ(fe.magneticSpecies, 3);
  const ChemicalSpecies& m = s.Table().species[3];
  EXPECT_EQ(m.label, "MFE3");
  EXPECT_FLOAT_EQ(m.coeff[1], 0.3972f);
  EXPECT_FLOAT_EQ(m.coeff[7], 0.0044f);
  EXPECT_EQ(m.fp, 0.0f);
  EXPECT_EQ(m.fpp, 0.0f);
  EXPECT_TRUE(s.OutHas(" => Magnetic form-factor coeff. (A,a,B,b,C,c,D)"));
  EXPECT_TRUE(
      s.OutHas(" MFE3   0.39720  13.24420   0.62950   4.90340  -0.03140   0.34960   0.00440"));
}

TEST(ScatteringSpecies, MagneticLabelOfAOneLetterElementGivesTheElement) {
  SpeciesJob s(kNeutron, 10);
  AtomSite& v = s.AddAtom(1, "MV2", 3);
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(s.Table().species[v.nuclearSpecies].label, "V   ");
  EXPECT_FLOAT_EQ(s.Table().species[v.nuclearSpecies].fp, -0.0382f);
  EXPECT_FLOAT_EQ(s.Table().species[v.magneticSpecies].coeff[1], 0.4085f);
}

TEST(ScatteringSpecies, PurelyMagneticPhaseHasNoScatteringLengths) {
  SpeciesJob s(kNeutron, 1);
  AtomSite& a = s.AddAtom(1, "MFE3", 1);
  AtomSite& b = s.AddAtom(1, "MFE3", 1);
  ASSERT_TRUE(s.SetUp());
  EXPECT_FALSE(s.OutHas(" => Scattering lengths:"));
  EXPECT_EQ(a.magneticSpecies, 1);
  EXPECT_EQ(b.magneticSpecies, 1);
  EXPECT_EQ(a.nuclearSpecies, 1);
  EXPECT_EQ(s.Table().speciesCount, 1);
}

TEST(ScatteringSpecies, MagneticLabelsAreNotFolded) {
  SpeciesJob s(kNeutron, 5);
  s.AddAtom(1, "Mfe3", 1);
  EXPECT_FALSE(s.SetUp());
  EXPECT_TRUE(s.OutHas(" => Scattering coefficients NOT FOUND for Mfe3"));
  EXPECT_TRUE(s.ConsoleHas(" Some scattering coefficients NOT FOUND"));
}

TEST(ScatteringSpecies, RareEarthLabelTakesTheFirstOfItsRows) {
  SpeciesJob s(kNeutron, 1);
  AtomSite& a = s.AddAtom(1, "JCE2", 1);
  ASSERT_TRUE(s.SetUp());
  EXPECT_FLOAT_EQ(s.Table().species[a.magneticSpecies].coeff[1], 0.0320f);
}

// ---- Phases and patterns ----

TEST(ScatteringSpecies, RunningCountPassesToTheNextPhaseOfThePattern) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "Fe");
  s.AddAtom(1, "O");
  s.AddPhase(2, 0);
  AtomSite& o = s.AddAtom(2, "O");
  AtomSite& ti = s.AddAtom(2, "Ti");
  ASSERT_TRUE(s.SetUp(1));
  ASSERT_TRUE(s.SetUp(2));
  EXPECT_EQ(s.Table(1).speciesCount, 2);
  EXPECT_EQ(o.nuclearSpecies, 2);
  EXPECT_EQ(ti.nuclearSpecies, 3);
  EXPECT_EQ(s.Table(2).speciesCount, 3);
  EXPECT_EQ(s.Table(2).species[3].label, "ti  ");
  EXPECT_EQ(s.Table(2).species[2].label, "o   ");
}

TEST(ScatteringSpecies, RunningCountPassesOverAProfileMatchingPhase) {
  SpeciesJob s(kXray, 0);
  s.AddAtom(1, "Fe");
  s.AddAtom(1, "O");
  s.AddPhase(2, 2);
  s.AddPhase(3, 0);
  AtomSite& o = s.AddAtom(3, "O");
  AtomSite& ti = s.AddAtom(3, "Ti");
  ASSERT_TRUE(s.SetUp(1));
  ASSERT_TRUE(s.SetUp(2));
  ASSERT_TRUE(s.SetUp(3));
  EXPECT_EQ(s.Table(2).speciesCount, 0);
  EXPECT_EQ(o.nuclearSpecies, 2);
  EXPECT_EQ(ti.nuclearSpecies, 3);
  EXPECT_EQ(s.Table(3).speciesCount, 3);
  EXPECT_EQ(s.Table(3).species[1].label, "fe  ");
}

TEST(ScatteringSpecies, EntriesStayTheFirstSpeciesOfLaterPhases) {
  SpeciesJob s(kNeutron, 0);
  s.AddEntry("SM", 0.08f);
  s.AddAtom(1, "O");
  s.AddPhase(2, 0);
  AtomSite& sm = s.AddAtom(2, "SM");
  AtomSite& fe = s.AddAtom(2, "FE");
  ASSERT_TRUE(s.SetUp(1));
  ASSERT_TRUE(s.SetUp(2));
  EXPECT_EQ(s.Table(1).speciesCount, 2);
  EXPECT_EQ(sm.nuclearSpecies, 1);
  EXPECT_FLOAT_EQ(s.Table(2).species[1].fp, 0.08f);
  EXPECT_EQ(s.Table(2).species[2].label, "O   ");
  EXPECT_EQ(fe.nuclearSpecies, 3);
  EXPECT_EQ(s.Table(2).speciesCount, 3);
}

TEST(ScatteringSpecies, RadiationIsTheMagnitudeOfTheJobType) {
  // -1 (time of flight) and 3 (calculation) are neutron jobs: O takes its length.
  for (const int jobtyp : {-1, 3, -3}) {
    SpeciesJob s(jobtyp, 0);
    AtomSite& o = s.AddAtom(1, "O");
    ASSERT_TRUE(s.SetUp()) << jobtyp;
    EXPECT_EQ(o.nuclearSpecies, 1) << jobtyp;
    EXPECT_EQ(s.Table().species[1].label, "O   ") << jobtyp;
    EXPECT_FLOAT_EQ(s.Table().species[1].fp, 0.5803f) << jobtyp;
  }
  // 2 and -2 (calculations) are X-ray jobs: the label is folded and has nine coefficients.
  for (const int jobtyp : {2, -2}) {
    SpeciesJob s(jobtyp, 0);
    s.AddAtom(1, "O");
    ASSERT_TRUE(s.SetUp()) << jobtyp;
    EXPECT_EQ(s.Table().species[1].label, "o   ") << jobtyp;
    EXPECT_FLOAT_EQ(s.Table().species[1].coeff[1], 3.0485f) << jobtyp;
  }
}

TEST(ScatteringSpecies, ProfileMatchingPhaseHasNoSpecies) {
  SpeciesJob s(kXray, 2);
  s.AddAtom(1, "Xx");
  EXPECT_TRUE(s.SetUp());
  EXPECT_EQ(s.Table().speciesCount, 0);
}

TEST(ScatteringSpecies, PatternsWithoutTheContributionAreSkipped) {
  SpeciesJob s(kXray, 0);
  s.job->run.NPATT = 2;
  s.job->patterns[2].JOBTYP = kNeutron;
  s.job->phases[1].pat[2].Contribution = 1;
  AtomSite& a = s.AddAtom(1, "O");
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(s.job->phases[1].pat[1].species[1].label, "o   ");
  EXPECT_EQ(s.job->phases[1].pat[2].species[1].label, "O   ");
  EXPECT_FLOAT_EQ(s.job->phases[1].pat[2].species[1].fp, 0.5803f);
  EXPECT_EQ(a.nuclearSpecies, 1);
  s.job->phases[1].pat[2].Contribution = 0;
  s.job->phases[1].pat[2].speciesCount = 0;
  ASSERT_TRUE(s.SetUp());
  EXPECT_EQ(s.job->phases[1].pat[2].speciesCount, 0);
}

// ---- Anomalous column ----

TEST(AnomalousColumn, FirstReferenceWavelengthBelowLambdaPlusATenth) {
  EXPECT_EQ(AnomalousColumn(1.5406f), 3);
  EXPECT_EQ(AnomalousColumn(0.71f), 4);
  EXPECT_EQ(AnomalousColumn(2.5f), 1);
  EXPECT_EQ(AnomalousColumn(2.2f), 1);  // 2.28962 < 2.3
  EXPECT_EQ(AnomalousColumn(2.1f), 2);
  EXPECT_EQ(AnomalousColumn(0.5f), 5);
  EXPECT_EQ(AnomalousColumn(0.46f), 5);
}

TEST(AnomalousColumn, WavelengthBelowTheShortestReferenceGivesSix) {
  EXPECT_EQ(AnomalousColumn(0.45f), 6);
  EXPECT_EQ(AnomalousColumn(0.2f), 6);
}

TEST(AnomalousColumn, NoColumnBeyondTheFiveReferenceWavelengths) {
  float fp = 9.0f, fpp = 9.0f;
  AnomalousTerms(26, 6, fp, fpp);  // Co: a sixth column would read the f'' of Cr as f'
  EXPECT_EQ(fp, 0.0f);
  EXPECT_EQ(fpp, 0.0f);
  AnomalousTerms(26, 5, fp, fpp);
  EXPECT_FLOAT_EQ(fp, 0.256f);
  EXPECT_FLOAT_EQ(fpp, 0.630f);
  AnomalousTerms(26, 0, fp, fpp);
  EXPECT_EQ(fp, 0.0f);
  EXPECT_EQ(fpp, 0.0f);
}

// Fe at 0.3 A (41.328 keV): between the rows 41.1660 keV (f' 0.1117, f'' 0.1661) and 42.0218 keV
// (0.1068, 0.1594) of the energy table, linear in log E: f' 0.11076, f'' 0.16482.
TEST(AnomalousColumn, ShortWavelengthPatternTakesTheTermsAtItsEnergy) {
  SpeciesJob s(kXray, 0, 0.3f);
  s.AddAtom(1, "Fe");
  ASSERT_TRUE(s.SetUp());
  EXPECT_NEAR(s.Table().species[1].fp, 0.11076f, 2e-5);
  EXPECT_NEAR(s.Table().species[1].fpp, 0.16482f, 2e-5);
  EXPECT_TRUE(
      s.OutHas(" => Anomalous terms f', f'' at  41.328 keV (lambda 0.30000 A), from the "
               "energy table (Kissel)"));
}

TEST(AnomalousColumn, ReferenceWavelengthKeepsItsColumnAndSaysSo) {
  SpeciesJob s(kXray, 0, 1.5406f);
  s.AddAtom(1, "Co");
  ASSERT_TRUE(s.SetUp());
  EXPECT_FLOAT_EQ(s.Table().species[1].fp, -2.464f);
  EXPECT_FLOAT_EQ(s.Table().species[1].fpp, 3.608f);
  EXPECT_TRUE(
      s.OutHas(" => Anomalous terms f', f'' for the reference wavelength 1.54051 A "
               "(column 3 of the internal table)"));
}

}  // namespace
}  // namespace corvinet
