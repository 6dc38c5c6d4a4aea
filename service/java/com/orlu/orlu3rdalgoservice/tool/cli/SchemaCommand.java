package com.orlu.orlu3rdalgoservice.tool.cli;

import com.orlu.orlu3rdalgoservice.record.JsonWriter;
import com.orlu.orlu3rdalgoservice.tool.catalogue.RequestSchema;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;

import picocli.CommandLine.Command;

@Command(customSynopsis = "./run schema", footer = "  ./run schema > request.schema.json",
        description = "Print a JSON schema (draft 7) of request files, with each tag's type and meaning. "
                + "Editors use it for checks and completion (docs/request_files.md).")
final class SchemaCommand implements Subcommand {
    @Override
    public int run() throws IOException, MistakeException {
        System.out.print(JsonWriter.pretty(RequestSchema.of()));
        return Verdict.OK;
    }
}
