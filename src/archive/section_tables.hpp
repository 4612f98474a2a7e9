// Section tag tables of the first and second archive files, indexed from 1 by
// the table index that callers pass. Blank rows cannot be looked up.
#pragma once

#include "respcore/sections.hpp"

namespace respcore {

inline constexpr int ID_MAIN_ROWS = 300;
inline constexpr int ID_MAIN_T_ROWS = 175;

inline constexpr const char* ID_MAIN[ID_MAIN_ROWS] = {
    "REAC", "DISP", "STRT", "STRB", "STRM", "STNP", "STRW", "STRN", "STRS", "STRL", "FREQ", "MODE",
    "SREA", "SOLF", "STAX", "STPN", "STMV", "LRAC", "STSH", "STSI", "MPAF", "MPAM", "SPEC", "MACC",
    "STEC", "HTIM", "HDSP", "HSTR", "HDSN", "HSTN", "MDSP", "CABF", "ELNK", "STCM", "RZMD", "STCV",
    "STSR", "MDDS", "CFMO", "CFML", "NLNK", "LNTL", "AEFM", "RSMM", "DMSE", "HGSM", "CSPR", "NDFM",
    "NFCM", "RCBL", "STHM", "STHR", "STHX", "STHP", "STHS", "COOR", "CURL", "IFFN", "IFSL", "ITSL",
    "BTSS", "FOLR", "FOLX", "FOLS", "FOHR", "FOHX", "FOHS", "RSLR", "RSLX", "RSLS", "RSHR", "RSHX",
    "RSHS", "SPCT", "SRCT", "CRSI", "BTPF", "THLG", "GSLR", "GSHR", "NMXY", "EFFS", "FONO", "GSLS",
    "GSHS", "MCRF", "MCRI", "SCRF", "SCRI", "MTFU", "EMMR", "MDRF", "TMAS", "MPAN", "NDAC", "NDIF",
    "NDIM", "NDAM", "APTL", "MSTS", "APIX", "MCFC", "MESF", "STRC", "STRG", "STWC", "STWG", "RSAG",
    "MBCL", "MBGD", "MSCD", "STWT", "GIPT", "GIPD", "GIPP", "GILT", "GILD", "GILP", "GIST", "GISD",
    "GISP", "GIJT", "GIJD", "GIJP", "AIFB", "AIFP", "AIFT", "SLRI", "MBBR", "MFPU", "ANSM", "STCB",
    "MBCG", "PUFL", "STRV", "RCBE", "STIB", "SOTM", "STWS", "SCAX", "WOMS", "DSLT", "STIC", "NKSL",
    "STRE", "IFPR", "TRST", "MSTI", "PITR", "ITFP", "ITFL", "ITFS", "PJIF", "PPLE", "PLTP", "CRLT",
    "RNCD", "SOMS", "STE2", "FON2", "EFF2", "STST", "FRND", "MBWL", "STBW", "SINW", "IWSL", "WSMV",
    "SIBM", "SIWL", "BDSW", "STSE", "MLRT", "NDIS", "NFOC", "NREA", "MDLL", "MSKW", "MPAT", "MPRO",
    "MPEL", "MSEC", "MWDH", "MSCF", "MBSP", "MELM", "STSD", "STRD", "MESD", "IFSV", "STRR", "SIMB",
    "SIMC", "CMFP", "SCFP", "STSS", "STSW", "VMST", "AIFW", "EIDC", "MPRG", "SPLF", "PCFM", "ELIM",
    "LDSP", "CFEL", "MLRI", "MLRF", "SBSS", "MBSS", "SWBS", "MWBS", "PCRF", "FCRF", "BREA", "SBCS",
    "SWCS", "CFGL", "DCVM", "AGBT", "AGWT", "GCDI", "GCDR", "GCRI", "GCRR", "GCBI", "GCBR", "GCWI",
    "GCWR", "GDSP", "GRAC", "GSRT", "GSRB", "GWRB", "GENK", "GGNK", "GCEI", "GCER", "GCGI", "GCGR",
    "GCTI", "GCTR", "IASI", "IASE", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ",
    "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ",
    "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ",
    "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ",
    "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "    ", "FLAG",
};

inline constexpr const char* ID_MAIN_T[ID_MAIN_T_ROWS] = {
    "TRUS", "BEAM", "PSTR", "PLAT", "WALL", "PSTA", "AXYM", "SOLD", "MDSP", "MSHP", "NLDF", "NLFC",
    "PSRN", "GRMT", "INDF", "NDFI", "NDSP", "THIF", "NLBM", "HGST", "HFST", "INEF", "INED", "STIL",
    "STSH", "STSM", "FBCH", "POSF", "FSIB", "LSFH", "MDFL", "MSER", "MSES", "CORD", "ELMT", "ITTR",
    "ITBM", "ITEK", "ITNK", "MATL", "PSTH", "PSRH", "PLTH", "PSOH", "SDVA", "SOTM", "SOTF", "ADVA",
    "RDVA", "INWF", "INWD", "STIW", "SVMX", "AVMX", "DVMX", "NLTF", "MCPM", "STMV", "MBCT", "MBGT",
    "STCB", "MBVT", "TMSI", "TMSF", "BSEF", "HTIM", "REAC", "DISP", "LRAC", "STRT", "STRB", "STRM",
    "STNP", "STRW", "STRN", "STRS", "STRL", "SOLF", "STAX", "STPN", "MBCL", "MBGD", "MBBR", "MBCG",
    "HGSM", "STWC", "STWG", "STWT", "CBFM", "DANG", "AMAT", "WEIL", "WHIL", "LDNM", "NLBF", "LNTR",
    "LNBM", "ELNK", "NLNK", "FBYS", "AGDS", "EMBT", "MTKM", "MTKI", "ITBW", "WBMM", "NLWB", "STBW",
    "WSEF", "LNBW", "STWL", "INW2", "DVMD", "HGWL", "GLBM", "GLTF", "GLPS", "GLNP", "GLSD", "GLWB",
    "TFPV", "SUNL", "OILF", "VISF", "STLF", "HYSF", "ISOF", "MSSF", "OILD", "VISD", "STLD", "HYSM",
    "ISOM", "MSSP", "ENRF", "ENR2", "ENRG", "INEP", "RIVF", "ENGP", "QISH", "GLTT", "GLDC", "LDSP",
    "FWCH", "FSMP", "EGRF", "EGR2", "EGRP", "ENPG", "INAG", "FBCM", "FBSM", "TKDH", "DFPV", "FWCM",
    "FWSM", "NDFM", "NFCM", "EGPS", "ADDM", "ISGB", "IGBS", "LNWB", "PDTR", "PDBM", "PDWB", "NSKI",
    "PDWL", "PEWT", "INPD", "INWL", "INLW", "    ", "    ",
};

inline constexpr const char* ID_DIRECT[2] = {"DMED", "DSPL"};

// Whether a named section stands in its table at the row it names.
constexpr bool names_its_row(const SectionName& s) {
  const char* row = nullptr;
  switch (s.file) {
    case ArchiveFileKind::First:
      if (s.row < 1 || s.row > ID_MAIN_ROWS) return false;
      row = ID_MAIN[s.row - 1];
      break;
    case ArchiveFileKind::Second:
      if (s.row < 1 || s.row > ID_MAIN_T_ROWS) return false;
      row = ID_MAIN_T[s.row - 1];
      break;
    case ArchiveFileKind::Direct:
      if (s.row < 1 || s.row > 2) return false;
      row = ID_DIRECT[s.row - 1];
      break;
  }
  for (int i = 0; i < 4; ++i) {
    if (row[i] != s.tag[i]) return false;
  }
  return s.tag[4] == '\0';
}

namespace sections {
static_assert(names_its_row(THLG) && names_its_row(ELIM) && names_its_row(IASI) &&
              names_its_row(IASE));
static_assert(names_its_row(TRUS) && names_its_row(BEAM) && names_its_row(PSTR) &&
              names_its_row(PLAT) && names_its_row(WALL) && names_its_row(PSTA) &&
              names_its_row(AXYM) && names_its_row(SOLD) && names_its_row(PSRN) &&
              names_its_row(PSTH) && names_its_row(PSRH) && names_its_row(PLTH) &&
              names_its_row(PSOH) && names_its_row(EMBT) && names_its_row(WBMM));
static_assert(names_its_row(MDSP) && names_its_row(MSHP) && names_its_row(GRMT) &&
              names_its_row(NDSP) && names_its_row(THIF) && names_its_row(MSER) &&
              names_its_row(MSES) && names_its_row(CORD) && names_its_row(ELMT) &&
              names_its_row(ITTR) && names_its_row(ITBM) && names_its_row(MATL) &&
              names_its_row(MTKM) && names_its_row(ITBW) && names_its_row(NSKI));
static_assert(names_its_row(DMED) && names_its_row(DSPL));
}  // namespace sections

}  // namespace respcore
