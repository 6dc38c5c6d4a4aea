package com.orlu.orlu3rdalgoservice.tool;

import android.os.SystemProperties;
import android.system.ErrnoException;

import com.orlu.orlu3rdalgoservice.CaptureResultComposition;
import com.orlu.orlu3rdalgoservice.datastruct.VImageIPC;
import com.orlu.orlu3rdalgoservice.datastruct.VRequest;
import com.orlu.orlu3rdalgoservice.record.RequestRecorder;
import com.orlu.orlu3rdalgoservice.tool.judge.LibraryCheck;
import com.orlu.orlu3rdalgoservice.tool.judge.Verdict;
import com.orlu.orlu3rdalgoservice.tool.model.LineFile;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedEvents;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedImage;
import com.orlu.orlu3rdalgoservice.tool.model.RecordedRequest;
import com.orlu.orlu3rdalgoservice.tool.model.RequestReport;
import com.orlu.orlu3rdalgoservice.tool.request.FramePlan;
import com.orlu.orlu3rdalgoservice.tool.request.RequestFile;
import com.orlu.orlu3rdalgoservice.tool.run.CallbackInbox;
import com.orlu.orlu3rdalgoservice.tool.run.RequestCall;
import com.orlu.orlu3rdalgoservice.tool.run.ServiceClient;
import com.orlu.orlu3rdalgoservice.tool.run.Stopwatch;
import com.orlu.orlu3rdalgoservice.tool.run.WorkFolder;
import com.orlu.orlu3rdalgoservice.tool.text.MistakeException;

import java.io.IOException;
import java.util.ArrayList;
import java.util.List;

/** Runs a recorded request again, and records it while it does. */
final class RecordingPlayer {
    private final RecordedRequest mRecorded;
    private final RequestRecorder mRecorder;
    private final List<VImageIPC> mImages = new ArrayList<>();

    RecordingPlayer(RecordedRequest recorded, RequestRecorder recorder) {
        mRecorded = recorded;
        mRecorder = recorder;
    }

    /** Returns Verdict's status of the library; what the request came to is in the new recording. */
    int run() throws MistakeException, ErrnoException, IOException {
        RequestFile request = mRecorded.toRequest();
        Stopwatch stopwatch = new Stopwatch();
        request.properties().forEach(SystemProperties::set);
        LineFile lines = new LineFile(WorkFolder.events(), LineFile::isNoLookup);
        ServiceClient client = new ServiceClient(request, stopwatch, mRecorder);
        RecordedEvents events = new RecordedEvents();
        events.add(lines.next());
        Verdict library = LibraryCheck.of(events);
        if (library.status() != Verdict.OK) {
            System.out.println(library.line());
            return library.status();
        }
        try {
            play(request, client);
        } finally {
            mImages.forEach(RecordedImage::close);
        }
        client.end(request, stopwatch);
        // Those of one request are not the next one's.
        request.properties().keySet().forEach(name -> SystemProperties.set(name, ""));
        return Verdict.OK;
    }

    private void play(RequestFile request, ServiceClient client) throws MistakeException, ErrnoException {
        List<CaptureResultComposition> compositions = new ArrayList<>();
        for (FramePlan frame : request.frames().frames()) {
            CaptureResultComposition composition = new CaptureResultComposition(frame.captureResult());
            frame.composition().forEach(composition::putMetadata);
            compositions.add(composition);
        }
        List<VImageIPC> inputs = make("input");
        List<VImageIPC> outputs = make("output");
        try (CallbackInbox inbox = new CallbackInbox(client.clientId());
                RequestCall call = new RequestCall(client, new VRequest(request.id(), request.type()),
                        request.properties(), inputs, outputs, compositions)) {
            call.process();
            if (request.fullAsync()) {
                Long address = inbox.awaitRequest(RequestReport.CALLBACK_SECONDS * 1000L);
                if (address != null) {
                    call.update(address);
                }
            }
        }
    }

    private List<VImageIPC> make(String part) throws MistakeException, ErrnoException {
        List<VImageIPC> images = new ArrayList<>();
        for (RecordedImage image : mRecorded.images(part)) {
            images.add(image.make());
        }
        mImages.addAll(images);
        return images;
    }
}
