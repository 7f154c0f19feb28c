// The files that carry values attached to variables: solutions, MIP starts, hints, branching
// priorities, and the run summary. Reading queues attribute changes.
#pragma once

#include "base/text_reader.h"
#include "base/text_writer.h"
#include "io/value_lines.h"
#include "io/writer_names.h"
#include "model/model.h"

namespace tarvik {

void writeSolutionFile(Model &model, const char *filename);
void writeStartFile(Model &model, const char *filename);
void writeHintFile(Model &model, const char *filename);
void writePriorityFile(Model &model, const char *filename);
void writeSummaryFile(Model &model, const char *filename);

void readStartFile(Model &model, const char *filename);
void readHintFile(Model &model, const char *filename);
void readPriorityFile(Model &model, const char *filename);

// One line "name value" a variable; values of kUndefined are left out.
void putValueLines(TextWriter &out, WriterNames &names, const Vec<double> &values);

}  // namespace tarvik
