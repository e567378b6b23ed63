#pragma once

class Session;

/// Each command is a function in a file of its own, which adds it to the session's command line.
void addLs(Session& session);
void addShow(Session& session);
void addGet(Session& session);
void addCheck(Session& session);
void addScan(Session& session);
void addDiff(Session& session);
void addFormats(Session& session);
void addSet(Session& session);
void addRm(Session& session);
void addCp(Session& session);
void addMv(Session& session);
void addApply(Session& session);
void addExport(Session& session);
void addImport(Session& session);
void addContent(Session& session);
void addRecover(Session& session);

/// Adds all of them: first those that look, then those that edit.
void addCommands(Session& session);
