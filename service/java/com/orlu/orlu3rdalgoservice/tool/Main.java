package com.orlu.orlu3rdalgoservice.tool;

import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.tool.image.FrameSynthesis;
import com.orlu.orlu3rdalgoservice.tool.image.Picture;
import com.orlu.orlu3rdalgoservice.tool.image.SynthesisedFrame;
import com.orlu.orlu3rdalgoservice.tool.report.JsonReport;
import com.orlu.orlu3rdalgoservice.tool.report.ParameterPrinter;
import com.orlu.orlu3rdalgoservice.tool.report.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.report.Summary;
import com.orlu.orlu3rdalgoservice.tool.report.TraceReader;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileException;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFileReader;

import java.io.IOException;
import java.io.PrintStream;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/**
 * The command behind ./run. Exit status: 0 when all went through, 1 when a request failed on its way, 2 when
 * the command line or a request file can't be taken.
 */
public final class Main {
    private static final int FAILED = 1;
    private static final int REFUSED = 2;

    private final Options mOptions;
    private final PrintStream mTo = System.out;
    private final TraceReader mTraces;
    private final JsonReport mJson = new JsonReport();

    private ServiceClient mClient;

    private Main(Options options) {
        mOptions = options;
        String trace = System.getenv(TraceReader.VARIABLE);
        mTraces = new TraceReader(trace == null || trace.isEmpty() ? null : Path.of(trace));
    }

    /** Runs the command line. */
    public static void main(String[] arguments) {
        // Numbers look the same everywhere.
        Locale.setDefault(Locale.ROOT);
        // Threads of the algorithm library may still be attached, and would keep the VM alive.
        System.exit(status(arguments));
    }

    private static int status(String[] arguments) {
        try {
            return new Main(Options.parse(arguments)).run();
        } catch (IllegalArgumentException | RequestFileException e) {
            System.err.println("run: " + e.getMessage());
            return REFUSED;
        } catch (IOException e) {
            System.err.println("run: can't write or read " + e.getMessage());
            return FAILED;
        } catch (OutOfMemoryError e) {
            System.err.println("run: out of memory: the frames are too many or too large");
            return FAILED;
        } catch (ErrnoException | IllegalStateException | UnsatisfiedLinkError e) {
            System.err.println("run: " + e.getMessage());
            return FAILED;
        }
    }

    private int run() throws RequestFileException, ErrnoException, IOException {
        // All are read before the first runs, so that a mistake in the last shows at once.
        List<RequestFile> requests = new ArrayList<>();
        for (Path file : mOptions.requests()) {
            requests.add(RequestFileReader.read(file, mOptions.photo));
        }
        return mOptions.check ? check(requests) : runAll(requests);
    }

    // Frames are made as well, since a photo can be too small for a request.
    private int check(List<RequestFile> requests) throws RequestFileException {
        for (RequestFile request : requests) {
            frames(request);
            mTo.println(request.file() + ": right");
        }
        return 0;
    }

    private int runAll(List<RequestFile> requests) throws RequestFileException, ErrnoException, IOException {
        boolean failed = false;
        for (int i = 0; i < requests.size(); ++i) {
            RequestReport report = runOne(requests.get(i), !mOptions.oneClient || i == requests.size() - 1);
            new Summary(report, mTo).print();
            if (mOptions.params && report.trace != null) {
                ParameterPrinter.print(report.trace.parameters, mTo);
            }
            mJson.add(report);
            failed |= !report.problems.isEmpty();
        }
        if (mOptions.json != null) {
            mJson.write(mOptions.json);
        }
        return failed ? FAILED : 0;
    }

    private RequestReport runOne(RequestFile request, boolean lastOfClient)
            throws RequestFileException, ErrnoException, IOException {
        List<SynthesisedFrame> frames = frames(request);
        RequestReport report = new RequestReport(request);
        if (mClient == null) {
            mClient = new ServiceClient(request, report.stopwatch);
        }
        new RequestRunner(report, mClient, mTraces, mOptions.out).run(frames);
        if (lastOfClient) {
            mClient.end(request, report.stopwatch);
            mClient = null;
        }
        return report;
    }

    private List<SynthesisedFrame> frames(RequestFile request) throws RequestFileException {
        if (request.inputs().isEmpty()) {
            return List.of();
        }
        Picture photo = FrameSynthesis.load(request.photo());
        if (photo == null) {
            String problem = "no photo that can be read: " + request.photo();
            if (mOptions.photo != null) {
                throw new IllegalArgumentException("--photo: " + problem);
            }
            throw new RequestFileException(request.file().toString(), "photo", problem);
        }
        boolean raw = request.inputs().stream().anyMatch(image -> image.format().isRaw());
        return new FrameSynthesis(request.frames(), raw).frames(request.file(), photo);
    }
}
