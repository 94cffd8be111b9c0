#include "settings/text_table.h"

#include <algorithm>
#include <array>

namespace mirellon::settings {

namespace {

// In ascending order. A ";" parts the lines of a two-line control and belongs to the text; numbers that are
// missing have no use any more.
constexpr std::array<TextRow, 129> kTexts{{
    {1, L"Press Ctrl+O to open an image"},
    {2, L"File"},
    {3, L"Denoise"},
    {4, L"Help"},
    {5, L"Open...Ctrl+O"},
    {6, L"Save As...Ctrl+S"},
    {7, L"Close"},
    {8, L"Options..."},
    {9, L"Exit"},
    {10, L"Denoise Image..."},
    {11, L"Batch Denoising..."},
    {12, L"Help Contents F1"},
    {13, L"Visit Web Site"},
    {16, L"About..."},
    {17, L"Please wait ."},
    {18, L"Click and drag to move image, Double click to zoom to best fit, Use mouse wheel to zoom"},
    {19, L"Open Image (Ctrl+O)"},
    {20, L"Save Image As (Ctrl+S)"},
    {21, L"Denoise Current Image"},
    {22, L"Zoom In (+)"},
    {23, L"Zoom Out (-)"},
    {24, L"Zoom Image to Fit the Window"},
    {27, L"Report"},
    {29, L"Error"},
    {30, L"Image format not supported!"},
    {31, L"About"},
    {32, L"Medium;(normal)"},
    {33, L"N/A"},
    {34,
     L"Click and drag to move image or preview rectangle, Right-click for comparison between original "
     L"and denoised image"},
    {35, L"Low;(fastest)"},
    {36, L"Superior;(slowest)"},
    {37, L"Denoising wizard - Preview - Step 1"},
    {38, L"Denoise"},
    {39, L"Denoising wizard - Sharpening - Step 2"},
    {40, L"Next >>"},
    {41, L"Denoising wizard - Mixing Cans - Step 3"},
    {42, L"Finish"},
    {43, L"Abort"},
    {44,
     L"Click and drag to move image, Double click to zoom to best fit, Use mouse wheel to zoom, "
     L"Right-click for comparison between original and modified image"},
    {45, L"Strength:"},
    {46, L"Set sharpening strength for unsharp mask to improve the image impression"},
    {47, L"Intensity:"},
    {50, L"Jpeg Quality:"},
    {51, L"Highest"},
    {52, L"High"},
    {53, L"Medium"},
    {54, L"Low"},
    {55, L"Open..."},
    {56, L"Save As..."},
    {57, L"Options"},
    {58, L"Select language:"},
    {59, L"OK"},
    {60, L"Cancel"},
    {61, L"Use hardware acceleration"},
    {62, L"Use advanced denosing"},
    {63, L"Information"},
    {64, L"You have to restart application to affect the language change!"},
    {65, L"<< Previous"},
    {66, L"Set Default"},
    {67, L"Denoising strength:"},
    {68, L"Quality:"},
    {69, L"Process per component ;(slows down the processing)"},
    {70, L"Use mixing cans for blending denoised and original image according to image intensity"},
    {71, L"Select folder to denoise"},
    {72, L"Batch denoising options"},
    {73, L"Batch Denoising"},
    {74, L"Estimated time"},
    {75, L"Elapsed time"},
    {79, L"Denoising wizard - Preview"},
    {81, L"Warning"},
    {82, L"Denoising strength(chromacity):"},
    {83, L"Set Zoom 100%"},
    {84, L"Set Zoom"},
    {85,
     L"The application crashed last time. It's probably caused by low memory or by big size of photo "
     L"you tried to denoise. Please crop the image and denoise the image again."},
    {86, L"Mix only image intensity and let image chromacity unmixed"},
    {87, L"All"},
    {88,
     L"Batch denoising was successfully finished! You can find denoised images in subfolder named "
     L"denoised in chosen folder."},
    {89, L"Windows GDI+ error appeared, image will be saved without EXIF metadata."},
    {90, L"Windows GDI+ error appeared, image cannot be saved."},
    {101, L"Noise ratio:"},
    {102, L"Noise amplitude might be different in dark/light parts of the image."},
    {103, L"Correction of extra large chromatic spots."},
    {104, L"Strength:"},
    {105, L"Sharpening Tool"},
    {106, L"Level of Details 1"},
    {107, L"Level of Details 2"},
    {108, L"Level of Details 3"},
    {109, L"Denoise Image Fast..."},
    {110, L"Denoise Current Image Fast"},
    {111, L"CPU+GPU Fusion"},
    {112, L"Pure GPU"},
    {116, L"Strength - Intensity:"},
    {117, L"Strength - Chromacity:"},
    {118, L"Strength - Chromacity Large:"},
    {119, L"Noise domination (dark - light):"},
    {120, L"Parameters Setting"},
    {121, L"Profile:"},
    {122, L"Basic parameters"},
    {123, L"Save As..."},
    {124, L"Remove"},
    {125, L"Advanced parameters(optional)"},
    {126, L"Sharpening parameters"},
    {127, L"Tiny Details"},
    {128, L"Medium Details"},
    {129, L"Rough Details"},
    {130, L"Camera:"},
    {131, L"Image Info"},
    {132, L"Maker:"},
    {133, L"Type:"},
    {134, L"FNumber:"},
    {135, L"Exposure:"},
    {136, L"Captured:"},
    {137, L"Do you want to delete all settings for current camera?"},
    {138, L"Yes - delete all setting for current camera"},
    {139, L"No - delete only setting for current camera and current ISO"},
    {140, L"Cancel - cancel operation"},
    {141, L"Cannot delete selected setting"},
    {142, L"Adding Configuration"},
    {143,
     L"The application will use existing profiles for denoising. If it does't find any setting "
     L"corresponding to EXIF metadata, if will use parameters from:\n\n <<Unknown Camera>>   Lowest "
     L"ISO setting."},
    {144, L"Redefine"},
    {145, L"Save Manual Setting..."},
    {146, L"Delete Current Setting..."},
    {147, L"Manual tunning"},
    {148, L"Resolution:"},
    {149, L"Show / Hide"},
    {150, L"Use heavy point based artefacts reduction"},
    {151, L"None (Recommended)"},
    {152, L"Common"},
    {153, L"Strong"},
}};

// Texts that came later, in ascending order from kFirstOwnText on. A new row needs nothing else; a
// translation may leave it out.
constexpr std::array kOwnTexts = std::to_array<TextRow>({
    {161, L"Skipped:"},
    {162, L"Failed:"},
    {201, L"View"},
    {202, L"Undo"},
    {203, L"Redo"},
    {204, L"Recent Photographs"},
    {205, L"Colours"},
    {206, L"Result"},
    {207, L"Split View"},
    {208, L"Side by Side"},
    {209, L"Removed Noise"},
    {210, L"Light"},
    {211, L"Dark"},
    {212, L"High Contrast"},
    {213, L"Place Preview Rectangle"},
    {214, L"Show Original"},
    {215, L"Denoise Folder..."},
    {216, L"Opening %1 ..."},
    {217, L"Saving %1 ..."},
    {218, L"Denoising ..."},
    {219, L"Previewing ..."},
    {220, L"Saved as %1"},
    {221, L"%1 could not be opened: %2."},
    {222, L"%1 could not be saved: %2."},
    {223, L"There is not enough memory to denoise this photograph."},
    {224, L"The denoised photograph has not been saved."},
    {225, L"Save"},
    {226, L"Don't Save"},
    {227, L"The settings were changed since the photograph was denoised."},
    {228, L"Denoise and Save"},
    {229, L"Save As It Is"},
    {230, L"Open a Photograph..."},
    {231, L"or drop one here"},
    {232, L"Open a photograph first"},
    {233, L"Please wait until the work is done"},
    {234, L"The help pages are not installed"},
    {235, L"This is the first photograph of the folder"},
    {236, L"This is the last photograph of the folder"},
    {237, L"noise %1 / %2"},
    {238, L"%1 bit"},
    {239, L"%1 exists already. Do you want to replace it?"},
    {240, L"Clear List"},
    {241, L"Removes noise from photographs and leaves their detail.\nVersion %1"},
    {242, L"not enough memory"},
    {243, L"This program was built without a web page"},
    {244, L"The photograph has not been denoised yet."},
    {245, L"Previous Photograph"},
    {246, L"Next Photograph"},
    {247, L"Zoom In"},
    {248, L"Zoom Out"},
    {249, L"Brings the default back with a double click"},
    {250, L"ISO:"},
    {251, L"Camera and ISO speed of the settings"},
    {252, L"Settings cannot be kept under this name."},
    {253, L"Yes"},
    {254, L"No"},
    {255, L"Finishing the photograph in work ..."},
    {256, L"... and %1 more"},
    {257, L"Colour Management"},
    {258, L"The photograph's colour profile cannot be used; it is shown as one without a profile"},
    {259, L"The graphics card failed; the processor did its work"},
    {265, L"Graphics card: %1"},
    {266, L"%1 (switched off in the options)"},
    {267, L"not used, %1"},
    {268, L"being examined ..."},
    {269, L"The graphics card is not used: its driver crashed or did not answer in a trial."},
    {290, L"Toolbar"},
    {291, L"Photograph"},
    {292, L"File name:"},
    {293, L"File type:"},
    {294, L"Folder:"},
    {295, L"there is no such file"},
    {296, L"it is not an ordinary file"},
    {297, L"the file cannot be read"},
    {298, L"the file is empty"},
    {299, L"the format is not known"},
    {300, L"the file is damaged"},
    {301, L"only grey and colour photographs with 8 or 16 bits per channel can be opened"},
    {302, L"the picture is too large"},
    {303, L"nothing can be written there"},
    {304, L"the format cannot hold this photograph"},
    {305, L"the original photograph would be overwritten"},
    {306, L"The settings cannot be stored"},
    {307, L"The metadata could not be copied"},
    {330, L"Original"},
    {331, L"Denoised"},
});

constexpr bool Ascending(std::span<const TextRow> rows, int first, int last) {
  int before = first - 1;
  for (const TextRow& row : rows) {
    if (row.number <= before || row.number > last) return false;
    before = row.number;
  }
  return true;
}
static_assert(Ascending(kTexts, 1, kFirstOwnText - 1) && Ascending(kOwnTexts, kFirstOwnText, kLastText));

}  // namespace

std::span<const TextRow> TextTable() {
  return kTexts;
}

std::span<const TextRow> OwnTextTable() {
  return kOwnTexts;
}

const wchar_t* EnglishText(int number) {
  const std::span<const TextRow> rows = number < kFirstOwnText ? TextTable() : OwnTextTable();
  const auto* const end = rows.data() + rows.size();
  const auto* const found = std::lower_bound(
      rows.data(), end, number, [](const TextRow& row, int wanted) { return row.number < wanted; });
  return found != end && found->number == number ? found->english : L"";
}

}  // namespace mirellon::settings
