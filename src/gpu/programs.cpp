#include "gpu/programs.h"

#include <string>

#include "gpu/gl_functions.h"

namespace mirellon::gpu {

namespace {

constexpr std::size_t SlotOf(Program program) {
  return static_cast<std::size_t>(program);
}

// By slot.
constexpr std::array<ProgramInfo, kProgramCount> kInfos = {{
    {"DIVIDE", {"texDbl1", "texDbl2"}},
    {"DIFF_1", {"texture0"}},
    {"SUM4_1", {"texture0"}},
    {"BOX9_1", {"texture0", "deltaX", "deltaY"}},
    {"COPY_1", {"texture0"}},
    {"WEIGHT_1", {"texSrc", "texSum", "superDynamicity", "variance"}},
    {"ADD", {"texDbl1", "texDbl2"}},
    {"ACCUMULATE", {"texDbl1", "texDbl2", "texture0"}},
    {"ACCUMULATE_DUAL", {"texDbl1", "texDbl2", "texDbl1X", "texDbl2X", "texture0", "texture0X"}},
    {"DIFF_3", {"texture0"}},
    {"SUM4_3", {"texture0"}},
    {"BOX9_3", {"texture0", "deltaX", "deltaY"}},
    {"COPY_3", {"texture0"}},
    {"WEIGHT_3", {"texSrc", "texSum", "varianceY", "varianceUV", "superDynamicity"}},
    {"WEIGHT_DIRECT_1", {"texSrc", "texSum", "superDynamicity", "variance"}},
    {"WEIGHT_DIRECT_3", {"texSrc", "texSum", "varianceY", "varianceUV", "superDynamicity"}},
}};

constexpr std::array<Program, kProgramCount> kCompileOrder = {
    Program::kDiff1,   Program::kDiff3,         Program::kSum4One,        Program::kSum4Three,
    Program::kCopy1,   Program::kCopy3,         Program::kBox9One,        Program::kBox9Three,
    Program::kAdd,     Program::kAccumulate,    Program::kAccumulateDual, Program::kWeight1,
    Program::kWeight3, Program::kWeightDirect1, Program::kWeightDirect3,  Program::kDivide};

constexpr std::array<Program, kProgramCount> kLookUpOrder = {
    Program::kDiff1,   Program::kDiff3,         Program::kSum4One,        Program::kSum4Three,
    Program::kCopy1,   Program::kCopy3,         Program::kBox9One,        Program::kBox9Three,
    Program::kWeight1, Program::kWeightDirect1, Program::kWeight3,        Program::kWeightDirect3,
    Program::kAdd,     Program::kAccumulate,    Program::kAccumulateDual, Program::kDivide};

bool HasStatus(GLhandleARB object, GLenum status) {
  GLint value = 0;
  glGetObjectParameterivARB(object, status, &value);
  return value != 0;
}

std::string LogOf(GLhandleARB object) {
  GLint length = 0;
  glGetObjectParameterivARB(object, GL_OBJECT_INFO_LOG_LENGTH_ARB, &length);
  if (length < 1) return {};
  std::string log(static_cast<std::size_t>(length), '\0');
  GLsizei written = 0;
  glGetInfoLogARB(object, length, &written, log.data());
  log.resize(static_cast<std::size_t>(written));
  return log;
}

}  // namespace

const ProgramInfo& InfoOf(Program program) {
  return kInfos[SlotOf(program)];
}

const char* TextOf(Program program) {
  return kProgramTexts[SlotOf(program)];
}

std::span<const Program> CompileOrder() {
  return kCompileOrder;
}

bool Programs::Make(Program program, const char* text, std::ostream& log) {
  const std::size_t slot = SlotOf(program);
  shaders_[slot] = glCreateShaderObjectARB(GL_FRAGMENT_SHADER_ARB);
  glShaderSourceARB(shaders_[slot], 1, &text, nullptr);
  glCompileShaderARB(shaders_[slot]);
  programs_[slot] = glCreateProgramObjectARB();
  glAttachObjectARB(programs_[slot], shaders_[slot]);
  glLinkProgramARB(programs_[slot]);
  const bool failed = !HasStatus(shaders_[slot], GL_OBJECT_COMPILE_STATUS_ARB) ||
                      !HasStatus(programs_[slot], GL_OBJECT_LINK_STATUS_ARB);
  if (failed) {
    log << "The graphics card refuses the program " << InfoOf(program).name << ":\n"
        << LogOf(shaders_[slot]) << LogOf(programs_[slot]) << "\n"
        << text << std::flush;
  }
  return failed;
}

bool Programs::Compile(const ProgramTexts& texts, std::ostream& log) {
  bool failed = false;
  for (const Program program : kCompileOrder) failed |= Make(program, texts[SlotOf(program)], log);
  return failed;
}

void Programs::LookUpUniforms() {
  for (const Program program : kLookUpOrder) {
    const std::size_t slot = SlotOf(program);
    for (std::size_t i = 0; i < InfoOf(program).uniforms.size(); ++i) {
      const char* const name = InfoOf(program).uniforms[i];
      if (name != nullptr) locations_[slot][i] = glGetUniformLocationARB(programs_[slot], name);
    }
  }
}

void Programs::Release() {
  for (std::size_t slot = 0; slot < kProgramSlots; ++slot) {
    if (shaders_[slot] == 0 || programs_[slot] == 0) continue;
    glDetachObjectARB(programs_[slot], shaders_[slot]);
    glDeleteObjectARB(shaders_[slot]);
    glDeleteObjectARB(programs_[slot]);
    shaders_[slot] = 0;
    programs_[slot] = 0;
  }
}

void Programs::Use(Program program) const {
  glUseProgramObjectARB(programs_[SlotOf(program)]);
}

void Programs::SetSampler(Program program, std::size_t uniform, int unit) const {
  glUniform1iARB(Location(program, uniform), unit);
}

void Programs::SetNumber(Program program, std::size_t uniform, float value) const {
  glUniform1fARB(Location(program, uniform), value);
}

std::int32_t Programs::Location(Program program, std::size_t uniform) const {
  return locations_[SlotOf(program)][uniform];
}

}  // namespace mirellon::gpu
