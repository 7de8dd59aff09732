#pragma once

namespace Quillon9 {

/// The XML declaration in front of a Fast Infoset document (Rec. ITU-T X.891, 12.3). It is XML text that names the
/// encoding `finf`; it does not change the meaning of the document.
enum FInfoDecl : int {
  FInfoDecl_None = 0,
  FInfoDecl_NoVersion = 1,
  FInfoDecl_NoVersion_StandaloneYes = 2,
  FInfoDecl_NoVersion_StandaloneNo = 3,
  FInfoDecl_Version10 = 4,
  FInfoDecl_Version10_StandaloneYes = 5,
  FInfoDecl_Version10_StandaloneNo = 6,
  FInfoDecl_Version11 = 7,
  FInfoDecl_Version11_StandaloneYes = 8,
  FInfoDecl_Version11_StandaloneNo = 9,
};

}  // namespace Quillon9
