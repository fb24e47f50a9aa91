// Batch mode as a Makefile uses it, end to end with the real program: the
// options, --strict failures, parallel runs on one project, kills in the
// middle of a conversion, projects larger than the tables, C names, and
// pictures found by their extension in any case.
#include "app/demarrage.h"
#include "platform/fichiers.h"
#include "platform/imagefichier.h"
#include "tests/app/programme.h"
#include "tests/support/enregistreur.h"
#include "tests/support/images.h"
#include "tests/support/projets.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <map>
#include <random>
#include <thread>

namespace {

// A picture of tuiles x tuiles distinct 8 x 8 tiles over the colours of
// PaletteTest(200) (graine changes every pixel but the tile's number).
void EcritMosaique(const std::string& chemin, int tuiles, uint32_t graine) {
    const std::vector<uint32_t> couleurs = PaletteTest(200);
    ImageLocale image(tuiles * 8, tuiles * 8);
    std::mt19937 hasard(graine);
    for (int t = 0; t < tuiles * tuiles; ++t)
        for (int p = 0; p < 64; ++p) {
            const int x = t % tuiles * 8 + p % 8, y = t / tuiles * 8 + p / 8;
            image.Pose(x, y, couleurs[p == 0 ? t % 200 : p == 1 ? t / 200 : hasard() % 200]);
        }
    ASSERT_EQ(EcritBmp(chemin.c_str(), image.image, tuiles * 8, tuiles * 8), 1);
}

void EcritPetite(const std::string& chemin, const char* mime = "image/bmp") {
    ImageLocale image(16, 8, PaletteTest(128));
    ASSERT_EQ(EcritImageType(chemin.c_str(), mime, image.image, 16, 8), 1);
}

// The strict lines of standard error.
std::vector<std::string> LignesStrictes(const std::string& erreurs) {
    std::vector<std::string> lignes;
    for (size_t p = 0; (p = erreurs.find("tessellarium: ", p)) != std::string::npos; ++p)
        lignes.push_back(erreurs.substr(p, erreurs.find('\n', p) - p));
    return lignes;
}

size_t CompteRangees(const std::string& projet) {
    size_t n = 0;
    for (size_t p = 0; (p = projet.find("El\xE9ment: ", p)) != std::string::npos; ++p) ++n;
    return n;
}

pid_t Lance(const std::vector<std::string>& arguments) {
    std::vector<char*> argv = {(char*)TESS_PROGRAMME};
    for (const std::string& a : arguments) argv.push_back((char*)a.c_str());
    argv.push_back(nullptr);
    pid_t pid = -1;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    posix_spawn(&pid, TESS_PROGRAMME, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return pid;
}

int Attend(pid_t pid) {
    int etat = 0;
    waitpid(pid, &etat, 0);
    return WIFEXITED(etat) ? WEXITSTATUS(etat) : -WTERMSIG(etat);
}

// A lanceur that runs the program in a namespace of its own, where the
// folder is mounted as given ("--bind", "tmpfs -o size=64k"), after the shell
// text prepare; then shows the folder's names on standard output. Empty when
// this machine allows no such mount.
std::string Monte(const std::string& dossier, const std::string& montage, const std::string& prepare = "true",
                  const std::string& montre = "ls -A") {
    if (std::system("unshare -rm true >/dev/null 2>&1") != 0) return "";
    const std::string d = Guillemets(dossier);
    const std::string monte = montage == "--bind" ? "mount --bind " + d + " " + d + " && mount -o remount,bind,ro " + d
                                                  : "mount -t " + montage + " none " + d;
    return "unshare -rm sh -c " + Guillemets(monte + " && cd " + d + " && " + prepare +
                                             " && \"$0\" \"$@\"; c=$?; " + montre + "; exit $c");
}

} // namespace

// ---- Options ---------------------------------------------------------------------------

TEST(LotOptions, AideVersionEtOptionInconnueNeTouchentAucunFichier) {
    DossierTemporaire dossier;
    const Execution aide = Execute({"--help"});
    EXPECT_EQ(aide.code, 0);
    for (const char* attendu : {"--strict", "--version", "src=", "col=1..255", "README.md"})
        EXPECT_NE(aide.sortie.find(attendu), std::string::npos) << attendu;
    const Execution version = Execute({"--version"});
    EXPECT_EQ(version.code, 0);
    EXPECT_EQ(version.sortie, "Tessellarium 0.1\n");

    // Refused wherever they stand, with the option named.
    for (const std::vector<std::string>& ligne :
         {std::vector<std::string>{"--frobnicate", "-tset src=a"}, {"-tset src=a", "--x"}, {"--strict"},
          {"--strict", "p.tsl"}}) {
        const Execution e = Execute(ligne);
        EXPECT_EQ(e.code, 2) << ligne[0];
        EXPECT_TRUE(e.erreurs.starts_with("tessellarium: ")) << e.erreurs;
    }
    EXPECT_NE(Execute({"--frobnicate"}).erreurs.find("--frobnicate"), std::string::npos);
    EXPECT_TRUE(Fichiers().empty());

    // A chain that begins with one '-' runs as it always did.
    EcritPetite("a.bmp");
    EXPECT_EQ(Execute({"-tset", "src=a.bmp"}).code, 0);
    EXPECT_EQ(Fichiers(), (std::set<std::string>{"a.bmp", "a.map.c", "a.pal.c", "a.til.c", "projet.tsl"}));
}

// ---- --strict ----------------------------------------------------------------------------

// Each failure exits 1 with a line that names its file and says why; without
// --strict the same run exits 0 with the system's own messages only.
TEST(LotStrict, ChaqueEchecNommeSonFichier) {
    DossierTemporaire dossier;
    EcritPetite("a.bmp");
    EcritFichier("faux.png", "ceci n'est pas une image");
    ImageLocale image(64, 64, PaletteTest(255));
    ASSERT_EQ(EcritImageType("ab.png", "image/png", image.image, 64, 64), 1);
    const std::string png = LitFichier("ab.png");
    EcritFichier("ab.png", png.substr(0, png.size() / 2));

    const struct {
        std::string lien, ligne, systeme;
    } cas[] = {
        {"-tset src=absent", "cannot read picture absent: not found", ""},
        {"-b16 src=ab.png", "cannot read picture ab.png: damaged", ""},
        {"-b8 src=faux.png", "cannot read picture faux.png: not a picture", ""},
        {"-tset src=a.bmp foo=1", "a.bmp: unknown conv parameter foo",
         "[Debuging] Unrecognized convertion identifier: foo\n"},
        {"-tset src=a.bmp col=300", "a.bmp: col=300 is not a number from 1 to 255", ""},
        {"-tset src=a.bmp mapmode=12", "a.bmp: mapmode=12 is not 8, 16 or 32", ""},
        {"-tset src=a.bmp cmode=5", "a.bmp: cmode=5 is not 4, 8 or 15", ""},
        {"-tset src=a.bmp mdim=abc", "a.bmp: mdim=abc is not a size such as 256x256", ""},
        {"-tset src=a.bmp tdim=12x8", "a.bmp: tiles of 12 x 8 pixels",
         "[Debuging] Error on tileset dimensions (must be multiple of 8 and less than 128)\n"},
        {"-tset src=a.bmp name=8bits", "a.bmp: name=8bits is not a C identifier", ""},
        {"-tset src=a.bmp mdim=40000x8", "a.bmp: the area of 40000 x 8 pixels is larger",
         "[Tiles converter] Unable to convert an area of 40000 x 8 pixels: an area may have at most 32768 pixels "
         "a side and 33554432 pixels in all.\n"},
    };
    for (const auto& c : cas) {
        const Execution strict = Execute({"--strict", c.lien});
        EXPECT_EQ(strict.code, 1) << c.lien;
        const std::vector<std::string> lignes = LignesStrictes(strict.erreurs);
        EXPECT_TRUE(lignes.size() == 1 && lignes[0].starts_with("tessellarium: " + c.ligne)) << strict.erreurs;
        // The system's own message comes first, as without --strict.
        EXPECT_TRUE(strict.erreurs.starts_with(c.systeme)) << strict.erreurs;
        const Execution simple = Execute({c.lien});
        EXPECT_EQ(simple.code, 0) << c.lien;
        EXPECT_EQ(simple.erreurs, c.systeme) << c.lien;
    }
    // Refused before it runs: with the kind behind src it would name no output.
    EXPECT_EQ(Execute({"--strict", "-src=a.bmp tset"}).erreurs, "tessellarium: a.bmp: tset stands behind src: put the kind first\n");
    // One link failing fails the run; the others still do their work.
    const Execution chaine = Execute({"--strict", "-tset src=absent:-b16 src=a.bmp"});
    EXPECT_EQ(chaine.code, 1);
    EXPECT_TRUE(std::filesystem::exists("a.b16.c"));
    EXPECT_EQ(Execute({"--strict", "-b16 src=a.bmp"}).code, 0);
}

// A disk that fills up, and a folder that can't be written to: each named with
// the system's reason; the old files stay whole and nothing is left beside
// them. The folder d holds the picture and an old map.
static std::string DossierAvecAncienneCarte(const DossierTemporaire& dossier) {
    std::filesystem::create_directory("d");
    EcritMosaique("a.bmp", 16, 1); // 128 x 128: tiles of 98 KB in text
    std::filesystem::copy_file("a.bmp", "d/a.bmp");
    EcritFichier("d/a.map.c", "ancienne carte");
    return dossier.Dans("d");
}

TEST(LotStrict, DisquePlein) {
    DossierTemporaire dossier;
    const std::string d = DossierAvecAncienneCarte(dossier);
    // A tmpfs of 64 KB holding the picture and the old map, else a limit on
    // the size of a file (the same write refused).
    const std::string prepare = "cp " + Guillemets(dossier.Dans("a.bmp")) + " . && printf 'ancienne carte' > a.map.c";
    const std::string lanceur = Monte(d, "tmpfs -o size=64k", prepare, "ls -A; cat a.map.c");
    const Execution e =
        Execute({"--strict", "-tset src=a.bmp"}, lanceur.empty() ? "cd d && ulimit -f 60 && trap '' XFSZ &&" : lanceur);
    EXPECT_EQ(e.code, 1) << e.erreurs;
    EXPECT_NE(e.erreurs.find("[a.til.c] Unable to open the file for writing."), std::string::npos) << e.erreurs;
    const std::string raison = lanceur.empty() ? "File too large" : "No space left on device";
    EXPECT_NE(e.erreurs.find("tessellarium: cannot write a.til.c: " + raison), std::string::npos) << e.erreurs;
    // The old map whole, and nothing beside it but the project.
    if (!lanceur.empty())
        EXPECT_EQ(e.sortie, "a.bmp\na.map.c\nprojet.tsl\nancienne carte");
    else
        EXPECT_EQ(Fichiers("d"), (std::set<std::string>{"a.bmp", "a.map.c", "projet.tsl"}));
    EXPECT_EQ(LitFichier("d/a.map.c"), "ancienne carte");
}

TEST(LotStrict, DossierEnLectureSeule) {
    DossierTemporaire dossier;
    const std::string d = DossierAvecAncienneCarte(dossier);
    // A read-only mount where the machine allows one, else the rights of a
    // user other than root.
    std::string lanceur = Monte(d, "--bind");
    const bool monte = !lanceur.empty();
    if (!monte) {
        if (geteuid() == 0) GTEST_SKIP() << "no read-only mount here, and root writes anywhere";
        chmod("d", 0555);
        lanceur = "cd d &&";
    }
    const Execution e = Execute({"--strict", "-tset src=a.bmp"}, lanceur);
    chmod("d", 0755);
    EXPECT_EQ(e.code, 1);
    EXPECT_NE(e.erreurs.find("[a.map.c] Unable to open the file for writing."), std::string::npos) << e.erreurs;
    EXPECT_NE(e.erreurs.find(std::string("tessellarium: cannot write a.map.c: ") +
                             (monte ? "Read-only file system" : "Permission denied")),
              std::string::npos)
        << e.erreurs;
    EXPECT_EQ(Fichiers("d"), (std::set<std::string>{"a.bmp", "a.map.c"}));
}

// ---- Runs that share one project -----------------------------------------------------------

// make -j16 over sixteen pictures in one folder: every run records its three
// rows, every time.
TEST(LotParallele, SeizeRunsGardentToutesLeursRangees) {
    DossierTemporaire dossier;
    for (int i = 0; i < 16; ++i) EcritPetite("p" + std::to_string(i) + ".bmp");
    for (int repetition = 0; repetition < 20; ++repetition) {
        std::filesystem::remove("projet.tsl");
        std::vector<pid_t> runs;
        for (int i = 0; i < 16; ++i) runs.push_back(Lance({"--strict", "-tset src=p" + std::to_string(i)}));
        for (pid_t pid : runs) EXPECT_EQ(Attend(pid), 0);
        const std::string projet = LitFichier("projet.tsl");
        ASSERT_EQ(CompteRangees(projet), 48u) << "repetition " << repetition;
        for (int i = 0; i < 16; ++i)
            EXPECT_NE(projet.find(Ligne("p" + std::to_string(i), "carte", "p" + std::to_string(i) + ".map.c")),
                      std::string::npos);
    }
    EXPECT_EQ(Fichiers().size(), 16u * 4 + 1);
}

// A run that cannot have the project within its delay says so; a strict one
// then stops, touching nothing.
TEST(LotParallele, ProjetTenuTropLongtemps) {
    DossierTemporaire dossier;
    EnregistreurMessages enregistreur;
    EcritPetite("a.bmp");
    const int verrou = VerrouilleDossierDe(dossier.Dans("projet.tsl").c_str(), 0);
    ASSERT_GE(verrou, 0);
    DelaiVerrouProjet = 100;
    EXPECT_EQ(Demarre("-tset src=a.bmp", nullptr, true), 1);
    EXPECT_EQ(Fichiers(), std::set<std::string>{"a.bmp"});
    EXPECT_EQ(Demarre("-tset src=a.bmp", nullptr, false), 0); // goes on, as runs always did
    EXPECT_TRUE(std::filesystem::exists("a.til.c"));
    LibereVerrou(verrou);
    ASSERT_EQ(enregistreur.messages.size(), 2u);
    EXPECT_EQ(enregistreur.messages[0], "[Project file] Another run has held " + dossier.Dans("projet.tsl") +
                                            " for 0 seconds.\nThis run goes on without waiting for it.");
}

// ---- Nothing lost -------------------------------------------------------------------------

// A large conversion killed at random moments leaves the old set of files or
// the new one, never a mix, and nothing beside them.
TEST(LotCoupure, SigkillLaisseLAncienOuLeNouveauJeu) {
    DossierTemporaire dossier;
    const int anonyme = open(".", O_TMPFILE | O_RDWR, 0600);
    if (anonyme < 0) GTEST_SKIP() << "no anonymous temporary files on this file system";
    close(anonyme);
    const std::vector<std::string> noms = {"a.map.c", "a.til.c", "a.pal.c", "projet.tsl"};
    auto Jeu = [&] {
        std::map<std::string, std::string> jeu;
        for (const std::string& n : noms) jeu[n] = LitFichier(n);
        return jeu;
    };
    EcritMosaique("a.bmp", 90, 1); // 8100 tiles, 3 MB of text
    ASSERT_EQ(Execute({"--strict", "-tset src=a.bmp"}).code, 0);
    const auto ancien = Jeu();
    EcritMosaique("a.bmp", 90, 2);
    auto duree = std::chrono::steady_clock::duration::max(); // the shortest of three runs
    for (int i = 0; i < 3; ++i) {
        const auto debut = std::chrono::steady_clock::now();
        ASSERT_EQ(Attend(Lance({"--strict", "-tset src=a.bmp"})), 0);
        duree = std::min(duree, std::chrono::steady_clock::now() - debut);
    }
    const auto nouveau = Jeu();
    ASSERT_NE(ancien.at("a.til.c"), nouveau.at("a.til.c"));

    // A helper the program leaves behind finishes before the folder is read.
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    // Moments over the whole run, and as many over its second half, where
    // the files are written and put in place.
    const unsigned graine = std::random_device()();
    std::mt19937 hasard(graine);
    int interrompus = 0;
    for (int essai = 0; essai < 30; ++essai) {
        for (const auto& [nom, contenu] : ancien) EcritFichier(nom, contenu);
        const pid_t pid = Lance({"--strict", "-tset src=a.bmp"});
        std::this_thread::sleep_for(duree * (essai % 2 * 1000 + hasard() % 1000) / (1000 + essai % 2 * 1000));
        kill(pid, SIGKILL);
        interrompus += Attend(pid) == -SIGKILL;
        while (waitpid(-1, nullptr, 0) > 0) {
        }
        const auto jeu = Jeu();
        EXPECT_TRUE(jeu == ancien || jeu == nouveau ||
                    (jeu.at("projet.tsl") == ancien.at("projet.tsl") && jeu.at("a.map.c") == nouveau.at("a.map.c") &&
                     jeu.at("a.til.c") == nouveau.at("a.til.c") && jeu.at("a.pal.c") == nouveau.at("a.pal.c")))
            << "try " << essai << ", seed " << graine;
        EXPECT_EQ(Fichiers(), (std::set<std::string>{"a.bmp", "a.map.c", "a.til.c", "a.pal.c", "projet.tsl"}));
    }
    EXPECT_GE(interrompus, 15); // most kills land inside the run
}

// Projects beyond the tables come out of a run byte for byte; the run still
// writes its element files, and under --strict it fails.
TEST(LotProjet, AuDelaDesLimitesLaisseLeFichierIntact) {
    DossierTemporaire dossier;
    EcritPetite("a.bmp");
    std::string milleUne;
    for (int i = 0; i < 1001; ++i) milleUne += Ligne("e" + std::to_string(i), "carte", "e.map.c");
    const std::string projets[] = {
        Projet("", milleUne),
        Projet("", "", "  End\n" + std::string(1000001, '#')),
        Projet("", Ligne("a", "carte", std::string(300, 'f'))),
        Projet("", Ligne("a", "carte") + "  Base: " + std::string(3000, 'b') + "\n"),
    };
    for (const std::string& projet : projets) {
        std::filesystem::remove("projet.tsl");
        EcritFichier("projet.tsl", projet);
        const Execution e = Execute({"--strict", "-b16 src=a.bmp"});
        EXPECT_EQ(e.code, 1);
        EXPECT_NE(e.erreurs.find("[Project file] " + dossier.Dans("projet.tsl") + " could not be read whole: "),
                  std::string::npos);
        EXPECT_NE(e.erreurs.find("tessellarium: " + dossier.Dans("projet.tsl") + ": not saved: "), std::string::npos)
            << e.erreurs;
        EXPECT_TRUE(LitFichier("projet.tsl") == projet);
        EXPECT_TRUE(std::filesystem::exists("a.b16.c"));
        std::filesystem::remove("a.b16.c");
    }
    // One that cannot be read at all is not replaced either.
    std::filesystem::remove("projet.tsl");
    std::filesystem::create_symlink("projet.tsl", "projet.tsl");
    const Execution e = Execute({"-b16 src=a.bmp"});
    EXPECT_EQ(e.code, 0);
    EXPECT_NE(e.erreurs.find("could not be read whole: Too many levels of symbolic links."), std::string::npos)
        << e.erreurs;
    EXPECT_TRUE(std::filesystem::is_symlink("projet.tsl"));
}

// A save of the same bytes leaves the file and its time alone; a project
// that is a link is written through to the file it names.
TEST(LotProjet, MemesOctetsEtLienSymbolique) {
    DossierTemporaire dossier;
    EcritPetite("a.bmp");
    ASSERT_EQ(Execute({"-b16 src=a.bmp"}).code, 0);
    const std::string projet = LitFichier("projet.tsl");
    const auto ancien = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
    std::filesystem::last_write_time("projet.tsl", ancien);
    ASSERT_EQ(Execute({"--strict", "-b16 src=a.bmp"}).code, 0);
    EXPECT_EQ(std::filesystem::last_write_time("projet.tsl"), ancien);
    EXPECT_EQ(LitFichier("projet.tsl"), projet);

    std::filesystem::create_directory("commun");
    std::filesystem::rename("projet.tsl", "commun/projet.tsl");
    std::filesystem::create_symlink("commun/projet.tsl", "projet.tsl");
    ASSERT_EQ(Execute({"--strict", "-b8 src=a.bmp"}).code, 0);
    EXPECT_TRUE(std::filesystem::is_symlink("projet.tsl"));
    EXPECT_EQ(CompteRangees(LitFichier("commun/projet.tsl")), 3u);
}

// ---- Names and pictures ---------------------------------------------------------------------

// Any file name gives C names that compile; the elements carry the same names.
TEST(LotNoms, NomsCQuiCompilent) {
    if (std::system("cc --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no C compiler";
    DossierTemporaire dossier;
    for (const char* nom : {"hero-walk.png", "my sprite.png", "8x8font.png"}) EcritPetite(nom, "image/png");
    ASSERT_EQ(Execute({"--strict", "-tset src=hero-walk:-tset src=\"my sprite\" +16c:-b8 src=8x8font"}).code, 0);
    for (const char* fichier : {"hero-walk.til.c", "hero-walk.map.c", "hero-walk.pal.c", "my sprite.til.c",
                                "my sprite.map.c", "my sprite.pal.c", "8x8font.b8.c", "8x8font.pal.c"})
        EXPECT_EQ(std::system(("cc -c -o /dev/null -Werror -finput-charset=latin1 " + Guillemets(fichier)).c_str()), 0)
            << fichier;
    EXPECT_NE(LitFichier("hero-walk.til.c").find(" hero_walk_tiles["), std::string::npos);
    EXPECT_NE(LitFichier("8x8font.b8.c").find(" _8x8font_bitmap8["), std::string::npos);
    const std::string projet = LitFichier("projet.tsl");
    for (const char* nom : {"hero_walk", "my_sprite", "_8x8font"})
        EXPECT_NE(projet.find(std::string("El\xE9ment: ") + nom + "\n"), std::string::npos) << nom;
}

// Without an extension: the usual list, then .jpeg and .tiff, each in any case.
TEST(LotImages, ExtensionsDansToutesLesCasses) {
    DossierTemporaire dossier;
    EcritPetite("Level.PNG", "image/png");
    EcritPetite("photo.jpeg", "image/jpeg");
    EcritPetite("scan.TIFF", "image/tiff");
    EcritPetite("deux.Bmp");
    EcritPetite("deux.png", "image/png"); // as written comes first
    ASSERT_EQ(Execute({"--strict", "-b16 src=Level:-b16 src=photo:-b16 src=scan:-b16 src=deux"}).code, 0);
    const std::string projet = LitFichier("projet.tsl");
    for (const char* base : {"Base: Level.PNG\n", "Base: photo.jpeg\n", "Base: scan.TIFF\n", "Base: deux.png\n"})
        EXPECT_NE(projet.find(base), std::string::npos) << base;
}
