// Reads Android.bp with the platform's own parser and prints its modules as JSON: the kind under "kind", and every
// property under its name.
//
//	go run read_android_bp.go ANDROID_BP
package main

import (
	"encoding/json"
	"fmt"
	"os"

	"github.com/google/blueprint/parser"
)

func fail(err interface{}) {
	fmt.Fprintln(os.Stderr, err)
	os.Exit(1)
}

// valueOf converts a string, a bool or a list for JSON. Android.bp may not contain other kinds of values.
func valueOf(expression parser.Expression) interface{} {
	switch value := expression.Eval().(type) {
	case *parser.String:
		return value.Value
	case *parser.Bool:
		return value.Value
	case *parser.List:
		values := []interface{}{}
		for _, each := range value.Values {
			values = append(values, valueOf(each))
		}
		return values
	}
	fail(fmt.Sprintf("%s: expected a string, a bool or a list", expression.Pos()))
	return nil
}

func main() {
	file, err := os.Open(os.Args[1])
	if err != nil {
		fail(err)
	}
	tree, errs := parser.ParseAndEval(os.Args[1], file, parser.NewScope(nil))
	if len(errs) > 0 {
		fail(errs[0])
	}
	modules := []interface{}{}
	for _, definition := range tree.Defs {
		module, isModule := definition.(*parser.Module)
		if !isModule {
			fail(fmt.Sprintf("%s: not a module", definition.Pos()))
		}
		properties := map[string]interface{}{"kind": module.Type}
		for _, property := range module.Properties {
			if _, twice := properties[property.Name]; twice {
				fail(fmt.Sprintf("%s: property %s is repeated", property.NamePos, property.Name))
			}
			properties[property.Name] = valueOf(property.Value)
		}
		modules = append(modules, properties)
	}
	encoder := json.NewEncoder(os.Stdout)
	encoder.SetEscapeHTML(false)
	encoder.SetIndent("", " ")
	if err := encoder.Encode(modules); err != nil {
		fail(err)
	}
}
