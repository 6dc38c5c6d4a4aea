package com.orlu.orlu3rdalgoservice.record;

import static org.junit.Assert.assertEquals;

import org.junit.After;
import org.junit.Test;

import java.util.Map;

public final class SettingTest {
    private static final String NAME = "orlu.record.of.test";

    @After
    public void clear() {
        System.clearProperty(NAME);
    }

    @Test
    public void platformPropertyIsTheFallback() {
        Map<String, String> platform = Map.of("persist.vendor." + NAME, "phone");
        assertEquals("phone", Setting.get(NAME, name -> platform.getOrDefault(name, "")));
        System.setProperty(NAME, "java");
        assertEquals("java", Setting.get(NAME, name -> platform.getOrDefault(name, "")));
    }

    @Test
    public void missingSettingIsEmpty() {
        assertEquals("", Setting.get(NAME));
    }

    @Test
    public void invalidNumbersYieldTheDefault() {
        assertEquals(16, Setting.number(NAME, 16));
        for (String wrong : new String[] {"few", "-1", "0", "99999999999999999999"}) {
            System.setProperty(NAME, wrong);
            assertEquals(wrong, 16, Setting.number(NAME, 16));
        }
        System.setProperty(NAME, "3");
        assertEquals(3, Setting.number(NAME, 16));
    }
}
