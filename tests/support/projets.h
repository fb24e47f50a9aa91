// Test support: project files as the writer spells them.
#pragma once
#include <filesystem>
#include <string>

inline const std::string ENTETE = "#Fichier de projet Tessellarium\n";
inline const std::string DONNEES = "donn\xE9"
                                   "es";
inline const std::string OUVERTURE_INFOS = "\n#Useful informations about the last session\n .section infos\n";
inline const std::string OUVERTURE_FICHIERS = "\n#Project tree elements\n .section fichiers\n";
inline const std::string OUVERTURE_DONNEES = "\n#Section where you can enter any script command. It permits "
                                             "you to set here different variables.\n .section " +
                                             DONNEES + "\n";
inline const std::string FIN_DONNEES_DEFAUT = "  End\n\n\n\n";
inline const std::string MODELE_DEFAUT = "  DefModele \"Default\"\t\t{\n  }\n\n";

// The three sections: infos whole from its opening, the rows, the données body.
inline std::string Projet(const std::string& infos, const std::string& lignes,
                          const std::string& donnees = FIN_DONNEES_DEFAUT) {
    return ENTETE + infos + OUVERTURE_FICHIERS + lignes + " Fin\n" + OUVERTURE_DONNEES + donnees;
}

// One row; an empty type leaves the Type line out.
inline std::string Ligne(const std::string& nom, const std::string& type, const std::string& fichier = "",
                         const std::string& base = "", const std::string& dossier = "") {
    std::string s = " #--------------\n  El\xE9ment: " + nom + "\n";
    if (!type.empty()) s += "  Type: " + type + "\n";
    if (!fichier.empty()) s += "  Fichier: " + fichier + "\n";
    if (!base.empty()) s += "  Base: " + base + "\n";
    if (!dossier.empty()) s += "  Dossier: " + dossier + "\n";
    return s;
}

// The opening of infos and its first lines, in the working directory.
inline std::string DebutInfos(const std::string& script, const std::string& aide) {
    return OUVERTURE_INFOS + "  Directory = \"" + std::filesystem::current_path().string() +
           "\"\n  Script = \"" + script + "\"\n  UserHelp = \"" + aide + "\"\n";
}

// Infos with every setting away from its default, a second model with escapes,
// and that model chosen.
inline std::string InfosCompletes(const std::string& nuances = "16") {
    return DebutInfos("jeu.spt", "aide perso.htm") +
           "\n  convert.couleurMasque = RGB(10,20,30)\n"
           "  convert.luminosite   GAMMA=RGB(2.000,1.000,4.000)  ADD=RGB(1.5,-2.0,127.5)  "
           "ALPHA=RGB(-5.0,0.0,30.0)\n"
           "  convert.mode = 2\n\n"
           "  system.sauverParamsMaps = false\n"
           "  system.sauverParamsMapsAuto = true\n"
           "  system.objetsMax = 300\n"
           "  editeur.Timing = 25\n"
           "  system.MemoireMax = 8 MB\n"
           "  system.selectionFormatAuto = false\n"
           "  convert.nuances = " +
           nuances +
           "\n  convert.nuancesAvant = true\n"
           "  convert.tronquer = true\n"
           "  convert.utilMaxCoul = true\n"
           "  convert.precisionMax = 64\n"
           "  DefFolder[1] = \"Divers\"\n"
           "  DefFolder[2] = \"cartes\"\n"
           "  DefFolder[10] = \"Fin de table\"\n"
           "  Format = \"Mon format\"\n\n" +
           MODELE_DEFAUT +
           "  DefModele \"Ennemis\"\t\t{\n"
           "  \t1, 2, \"vie\", \"100\"\n"
           "  \t2, 8, \"dit \\\"oui\\\"\", \"c:\\\\x\"\n"
           "  }\n\n"
           "  Modele = \"Ennemis\"\n  Fin\n";
}
