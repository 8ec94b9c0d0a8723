// A plug-in of clang-tidy 14: lets its checks look at the tree's own declarations alone. They look through
// every declaration of the system's headers too, and throw away what they find there, which takes five times
// as long.

#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchers.h>
#include <vector>

namespace {

using clang::ast_matchers::MatchFinder;

// The first to see the whole of a source, and so in time to say which of its declarations are visited next.
class OwnDeclarations : public clang::tidy::ClangTidyCheck {
 public:
  using ClangTidyCheck::ClangTidyCheck;

  void registerMatchers(MatchFinder *finder) override {
    finder->addMatcher(clang::ast_matchers::translationUnitDecl().bind("source"), this);
  }

  void check(const MatchFinder::MatchResult &found) override {
    std::vector<clang::Decl *> own;
    for (clang::Decl *declaration : found.Nodes.getNodeAs<clang::TranslationUnitDecl>("source")->decls()) {
      const auto place = found.SourceManager->getExpansionLoc(declaration->getLocation());
      if (!found.SourceManager->isInSystemHeader(place)) own.push_back(declaration);
    }
    found.Context->setTraversalScope(own);
  }
};

class Module : public clang::tidy::ClangTidyModule {
 public:
  void addCheckFactories(clang::tidy::ClangTidyCheckFactories &factories) override {
    factories.registerCheck<OwnDeclarations>("zem-own-declarations");
  }
};

const clang::tidy::ClangTidyModuleRegistry::Add<Module> kModule("zem", "The tree's own declarations alone.");

}  // namespace
